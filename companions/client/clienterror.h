// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

#include <functional>

/// Why lumd did not do as asked; no error at all when default-constructed.
struct ClientError
{
    enum class Kind {
        None,
        NoDaemon, ///< there is no lumd on the bus, it went before it answered, or there is no bus
        Refused, ///< the bus does not let this user call lumd
        TimedOut, ///< no answer within the time limit; what was asked for may still happen
        TooOld, ///< this lumd knows neither the object nor the method
        Failed, ///< anything else
    };

    Kind kind = Kind::None;
    /// The bus's own words, in English and of foreign origin: see shownName().
    QString text;

    explicit operator bool() const { return kind != Kind::None; }
};

/// What a call gave: a value, or an error and a value without meaning.
template <typename Value> struct Answer
{
    Value value{};
    ClientError error;
};

/// The value of a call that gives none.
struct Nothing
{
};

template <typename Value> using Done = std::function<void(const Answer<Value> &)>;
