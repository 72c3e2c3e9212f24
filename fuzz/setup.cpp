// SPDX-License-Identifier: BSD-3-Clause
#include "fuzz/setup.h"

#include "tests/support/testnamespace.h"

#include <QFile>
#include <QtGlobal>

#include <cstdlib>

int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    Q_UNUSED(argc)
    Q_UNUSED(argv)
    TestNamespace::enter();
    // The messages are made, since that is part of what is tried, but not shown.
    qputenv("QT_LOGGING_RULES", "com.tovra.lumd.*=true");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) { });
    return 0;
}

QByteArray Fuzz::bytes(const std::uint8_t *data, std::size_t size)
{
    return {reinterpret_cast<const char *>(data), static_cast<int>(size)};
}

void Fuzz::writeFile(const char *path, const QByteArray &contents)
{
    QFile file(QString::fromLatin1(path));
    require(file.open(QIODevice::WriteOnly | QIODevice::Truncate)
        && file.write(contents) == contents.size());
}

void Fuzz::require(bool claim)
{
    if (!claim)
        std::abort();
}
