// SPDX-License-Identifier: BSD-3-Clause
#include "tests/clients/clienttest.h"

#include <QFile>
#include <QtTest>

namespace {

QString text(const QString &service, const QString &interface, quint32 code, quint32 flags,
    const QByteArray &payload, const QVector<int> &offsets)
{
    QStringList positions;
    for (const int offset : offsets)
        positions.append(QString::number(offset));
    return QStringLiteral("%1 %2 %3 %4: %5 [%6]")
        .arg(service, interface)
        .arg(code)
        .arg(flags)
        .arg(QString::fromLatin1(payload.toHex(' ')), positions.join(QLatin1Char(' ')));
}

} // namespace

bool installRuntime(int sdkLevel)
{
    QFile file(QStringLiteral("/opt/alien/build.prop"));
    const QByteArray line = "ro.build.version.sdk=" + QByteArray::number(sdkLevel) + '\n';
    return file.open(QIODevice::WriteOnly) && file.write(line) == line.size();
}

QString callText(const FakeBinder::Request &request)
{
    QVector<int> offsets;
    for (const int offset : request.offsets)
        offsets.append(offset - (request.bytes.size() - request.payload.size()));
    return text(
        request.service, request.interface, request.code, request.flags, request.payload, offsets);
}

QString callText(
    const char *service, const char *interface, quint32 code, const FakeBinder::ParcelWriter &body)
{
    return text(
        QLatin1String(service), QLatin1String(interface), code, 0, body.bytes(), body.offsets());
}

QStringList takeCalls()
{
    QStringList calls;
    for (const FakeBinder::Request &request : FakeBinder::requests())
        calls.append(callText(request));
    FakeBinder::clearRequests();
    return calls;
}

quint32 handedOver()
{
    return FakeBinder::requests().last().localObjects.value(0);
}

void ClientTest::answerWith(const QString &service, const FakeBinder::Reply &reply)
{
    QVERIFY(m_unit->become(QStringLiteral("deactivating")));
    FakeBinder::registerService(service, [reply](const FakeBinder::Request &) { return reply; });
    QVERIFY(m_unit->become(QStringLiteral("active")));
}

void ClientTest::cleanup()
{
    QVERIFY(m_unit->become(QStringLiteral("deactivating")));
    QCOMPARE(FakeBinder::errors(), QStringList());
    QCOMPARE(FakeBinder::leaks(), QStringList());
}
