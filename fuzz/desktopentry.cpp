// SPDX-License-Identifier: BSD-3-Clause
#include "launcher/desktopentry.h"
#include "fuzz/setup.h"

#include <QFile>
#include <QMap>
#include <QStringList>

namespace {

using Values = QMap<QString, QString>;

// The slow reading: all of it as text, line by line.
Values valuesOf(const QByteArray &bytes)
{
    Values values;
    bool inEntry = false;
    const QString text = QString::fromUtf8(bytes.constData(), bytes.size());
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString &line : lines) {
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        const int separator = line.indexOf(QLatin1Char('='));
        if (!inEntry)
            inEntry = line == QLatin1String("[Desktop Entry]");
        else if (separator >= 0)
            values.insert(line.left(separator), line.mid(separator + 1));
    }
    return values;
}

QByteArray saved(const Values &values)
{
    QString text = QStringLiteral("[Desktop Entry]\n");
    for (auto entry = values.constBegin(); entry != values.constEnd(); ++entry)
        text += entry.key() + QLatin1Char('=') + entry.value() + QLatin1Char('\n');
    return text.toUtf8();
}

QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    Fuzz::require(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

} // namespace

// Every way to ask for a value must agree with the slow reading, and so must what is saved; a
// text that is set again changes nothing.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString fileName = QStringLiteral("/usr/share/applications/fuzzed.desktop");
    const QByteArray text("[Desktop Entry]\nName=a\nX-Set=a=b\n");
    const QByteArray bytes = Fuzz::bytes(data, size);
    Values values = valuesOf(bytes);
    Fuzz::writeFile("/usr/share/applications/fuzzed.desktop", bytes);
    {
        DesktopEntry entry(fileName);
        for (const char *key : {"", "Name", "X-lumd-packageName"}) {
            const QString expected = values.value(QLatin1String(key));
            const QString value = entry.value(QLatin1String(key));
            const QString read = DesktopEntry::readValue(fileName, key);
            Fuzz::require(value == expected && value.isNull() == expected.isNull());
            Fuzz::require(read == expected && read.isNull() == expected.isNull());
        }
        entry.remove(QStringLiteral("Name"));
        entry.setAll(text);
    }
    values.insert(QStringLiteral("Name"), QStringLiteral("a"));
    values.insert(QStringLiteral("X-Set"), QStringLiteral("a=b"));
    const QByteArray expected = saved(values);
    Fuzz::require(contents(fileName) == expected);
    const DesktopEntry again(fileName);
    Fuzz::require(again.isSavedAs(expected));
    return 0;
}
