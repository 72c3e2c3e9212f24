// SPDX-License-Identifier: BSD-3-Clause
// The main function where there is no libFuzzer: each seed of a folder runs through the target
// once.
#include "fuzz/setup.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace {

int run(const QString &path)
{
    QFile file(path);
    Fuzz::require(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    std::fprintf(stderr, "%s\n", QFile::encodeName(path).constData());
    return LLVMFuzzerTestOneInput(
        reinterpret_cast<const std::uint8_t *>(bytes.constData()), std::size_t(bytes.size()));
}

} // namespace

int main(int argc, char **argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    const QDir corpus(QFile::decodeName(argc > 1 ? argv[1] : ""));
    const QStringList names = corpus.entryList(QDir::Files);
    Fuzz::require(!names.isEmpty());
    for (const QString &name : names)
        run(corpus.filePath(name));
    return 0;
}
