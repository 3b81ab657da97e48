// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/definednames.h"

#include <algorithm>

namespace VANTIX::PS {

void DefinedNames::Begin(Text kind) {
    mLevels.push_back({kind, {}});
}

void DefinedNames::End(bool kept) {
    if (mLevels.size() < 2) {
        return;
    }
    Level ended = std::move(mLevels.back());
    mLevels.pop_back();
    if (!kept || ended.kind == Text::kProcedure) {
        return;
    }
    for (auto& [name, meaning] : ended.names) {
        mLevels.front().names.insert_or_assign(name, meaning);
    }
}

void DefinedNames::Define(std::string_view name, const Meaning& meaning) {
    mLevels.back().names.insert_or_assign(std::string(name), meaning);
}

const DefinedNames::Meaning* DefinedNames::FindIn(const Level& level, std::string_view name) {
    const auto found = level.names.find(name);
    return found == level.names.end() ? nullptr : &found->second;
}

const DefinedNames::Meaning* DefinedNames::Find(std::string_view name) const {
    std::size_t level = mLevels.size() - 1;
    const Meaning* found = FindIn(mLevels[level], name);
    while (found == nullptr && level > 0) {
        level = mLevels[level].kind == Text::kForm ? 0 : level - 1;
        found = FindIn(mLevels[level], name);
    }
    return found;
}

const DefinedNames::Meaning* DefinedNames::FindLasting(std::string_view name) const {
    return mLevels.back().kind == Text::kProcedure ? FindIn(mLevels.back(), name) : Find(name);
}

bool DefinedNames::IsTaken(std::string_view name, const Meaning& meaning) const {
    // What stands in the body comes behind all that it has so far.
    return mLevels.size() > 1 &&
           std::any_of(mLevels.begin(), mLevels.end(), [&](const Level& level) {
               const Meaning* found = FindIn(level, name);
               return found != nullptr && *found != meaning;
           });
}

}  // namespace VANTIX::PS
