// SPDX-License-Identifier: BSD-3-Clause
#include "tests/binder/runtimetest.h"

#include "tests/support/fakegbinder/fakebinder.h"

#include <QtTest>

void RuntimeTest::initTestCase()
{
    m_unit.emplace();
}

void RuntimeTest::cleanup()
{
    QCOMPARE(FakeBinder::errors(), QStringList());
    QCOMPARE(FakeBinder::leaks(), QStringList());
}
