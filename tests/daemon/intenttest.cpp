// SPDX-License-Identifier: BSD-3-Clause
#include "tests/daemon/intenttest.h"

#include <QtTest>

using FakeBinder::ParcelWriter;
using FakeBinder::Reply;
using FakeBinder::Request;

namespace {

const QString activity = QStringLiteral("activity");
const QString surfaceFlinger = QStringLiteral("SurfaceFlinger");

} // namespace

ParcelWriter parcel()
{
    return ParcelWriter(ParcelWriter::Style::Gbinder);
}

QByteArray bundle(const ParcelWriter &entries, int count)
{
    constexpr qint32 magic = 0x4C444E42;
    return parcel()
        .int32(4 + entries.bytes().size())
        .int32(magic)
        .int32(count)
        .raw(entries.bytes())
        .bytes();
}

QByteArray startActivityBody(const Intent &intent, bool hasIdentifier)
{
    ParcelWriter writer = parcel();
    writer.nullObject().string16(QStringLiteral("")).int32(1).string16(intent.action);
    if (intent.data.isNull())
        writer.int32(0);
    else
        writer.int32(1).string16(intent.data);
    writer.string16(intent.type);
    if (hasIdentifier)
        writer.string16(QStringLiteral(""));
    writer.int32(intent.flags).string16(intent.package);
    if (intent.className.isNull())
        writer.nullString16();
    else
        writer.string16(intent.package).string16(intent.className);
    writer.int32(0).string16List(intent.categories).int32(0).int32(0).int32(-2);
    if (intent.extras.isNull())
        writer.int32(-1);
    else
        writer.raw(intent.extras);
    writer.string16(intent.type).nullObject().string16(QStringLiteral(""));
    return writer.int32(0).int32(0).int32(0).int32(0).bytes();
}

QString launch(const IntentCall &call)
{
    return errorOf(DaemonFixture::call(QStringLiteral("launchIntent"),
        {call.action, call.data, call.type, call.package, call.className, call.category,
            call.extras}));
}

void IntentTest::initTestCase()
{
    m_world = std::make_unique<AppFixture>();
    QVERIFY(start());
}

void IntentTest::init()
{
    m_world->android->clearRequests();
    m_world->daemon->clearLines();
}

bool IntentTest::start()
{
    m_world->android->registerService(activity);
    m_world->android->registerService(surfaceFlinger,
        [](const Request &) { return Reply::data(ParcelWriter().boolean(true).bytes()); });
    return m_world->start() && m_world->see(QStringLiteral("active"))
        && m_world->waitForLink(activity);
}

QVector<QByteArray> IntentTest::takeBodies(quint32 code)
{
    QVector<QByteArray> bodies;
    for (const Request &request : m_world->requests(activity, code))
        bodies.append(request.payload);
    m_windowQuestions = names(m_world->requests(surfaceFlinger, hasWindowCode));
    m_world->android->clearRequests();
    return bodies;
}

QStringList IntentTest::warnings() const
{
    return m_world->daemon->lines().filter(
        QRegularExpression(QStringLiteral("^(critical|warning)")));
}
