// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

struct _GDBusMessage;
struct _GUnixFDList;
struct _GVariant;

/// Makes messages to the daemon as nobody should send them: the 19 methods with fitting and with
/// other arguments, others' interfaces and paths, signals and replies; file descriptors, deep
/// variants, long and odd strings in all of them. The same seed gives the same messages.
class BusCallGenerator
{
public:
    /// `files` are paths that strings hold now and then.
    BusCallGenerator(uint32_t seed, std::vector<std::string> files);

    /// A message whose only reference is the caller's.
    _GDBusMessage *next();

private:
    struct Body;

    bool happens(int percent);
    size_t below(size_t limit);
    template <typename List> const auto &oneOf(const List &list)
    {
        return list[below(list.size())];
    }

    _GDBusMessage *methodCall();
    _GDBusMessage *signal();
    _GDBusMessage *answer();
    void fill(_GDBusMessage *message, const std::string &signature);

    std::string text();
    std::string basicType();
    std::string anyType(int depth);
    std::string anySignature();
    _GVariant *value(const std::string &type, int depth, _GUnixFDList *descriptors);
    _GVariant *basicValue(char type, _GUnixFDList *descriptors);
    _GVariant *nestedVariant(_GUnixFDList *descriptors);

    std::mt19937 m_random;
    std::vector<std::string> m_files;
};
