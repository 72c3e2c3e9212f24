// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>
#include <QtTest>

#include <functional>
#include <memory>

namespace TestMain {

/// Makes the test object; called once, after the application exists.
using Factory = std::function<std::unique_ptr<QObject>()>;

/// Takes the variables that lumd, Qt's logging and D-Bus read out of the environment.
void clearEnvironment();

/// What LUM_TEST_MAIN expands to. Gives the exit code, 0 only if all went well.
int run(int argc, char **argv, const QMetaObject &metaObject, const Factory &factory);

} // namespace TestMain

/// The main function of a test executable.
///
/// With no test function named, each function runs in a process of its own, so that
/// process-wide singletons are new for each. With functions named, the process enters the
/// private namespace (testnamespace.h), makes a QCoreApplication and runs them. The
/// variables that lumd, Qt's logging and D-Bus read are taken out of the environment first,
/// and the locale is C.UTF-8.
#define LUM_TEST_MAIN(TestClass)                                                                   \
    int main(int argc, char **argv)                                                                \
    {                                                                                              \
        return TestMain::run(argc, argv, TestClass::staticMetaObject,                              \
            [] { return std::make_unique<TestClass>(); });                                         \
    }
