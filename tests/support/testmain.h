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

/// Adds a test class to the executable, under the name of its source without ".cpp".
class Registration
{
public:
    Registration(const char *source, const QMetaObject &metaObject, const Factory &factory);
};

/// What the executable's main function does. Gives the exit code, 0 only if all went well.
int run(int argc, char **argv);

} // namespace TestMain

/// Makes the class a test of the executable. Where that has several, it is started by a link with
/// the name of the one to run. "-entries" lists the functions of all.
///
/// With no test function named, each function runs in a process of its own, so that
/// process-wide singletons are new for each. With functions named, the process enters the
/// private namespace (testnamespace.h), makes a QCoreApplication and runs them. The
/// variables that lumd, Qt's logging and D-Bus read are taken out of the environment first,
/// and the locale is C.UTF-8.
#define LUM_TEST_MAIN(TestClass)                                                                   \
    static const TestMain::Registration registrationOf##TestClass(                                 \
        __FILE__, TestClass::staticMetaObject, [] { return std::make_unique<TestClass>(); });
