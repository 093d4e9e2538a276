#pragma once

#include <functional>
#include <map>
#include <string>

#include "FakeRemotes.h"

/// An older link that has a list of objects for each number that has one, and counts how often it was given back.
class ListingRemote : public FakeRemote {
public:
    std::map<std::uint32_t, std::string> lists;
    int released = 0;
    std::function<void()> onList; ///< called before each list is given

    KXPCode Release() override {
        ++released;
        return KXP_OK;
    }
    KXPCode GetObjectList(const char* parent, std::uint32_t type, char** out) override {
        if (onList)
            onList();
        const auto list = lists.find(type);
        text = list != lists.end() ? list->second.c_str() : nullptr;
        code = list != lists.end() ? KXP_OK : KXP_NO;
        return FakeRemote::GetObjectList(parent, type, out);
    }
};
