// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "tests/support/fakegbinder/fakebindertypes.h"

#include <QJsonObject>

#include <functional>

/// The talk between the fake library inside a daemon and the test: one JSON object a line.
///
/// Test to daemon: {"op": NAME, "id": N, ...} and {"return": N, "reply": {...}}.
/// Daemon to test: {"result": ..., "id": N} for each operation, {"call": N, "handler": N,
/// "request": {...}} when an Android service is called, and the events {"request": {...}}
/// and {"published": [...]}.
namespace FakeBinder::Messages {

QJsonObject toJson(const Request &request);
Request requestFrom(const QJsonObject &json);
QJsonObject toJson(const Reply &reply);
Reply replyFrom(const QJsonObject &json);
QJsonObject toJson(const Call &call);
Call callFrom(const QJsonObject &json);
QJsonObject toJson(const Answer &answer);
Answer answerFrom(const QJsonObject &json);
QJsonArray toJson(const QVector<PublishedService> &services);
QVector<PublishedService> servicesFrom(const QJsonArray &json);

/// Writes one message; false when the other end is gone.
bool send(int socket, const QJsonObject &message);
/// Reads messages and hands each to `take`, until `take` gives false or the other end goes.
/// `buffer` keeps what was read beyond the last message that was taken.
void receive(int socket, QByteArray *buffer, const std::function<bool(const QJsonObject &)> &take);

} // namespace FakeBinder::Messages
