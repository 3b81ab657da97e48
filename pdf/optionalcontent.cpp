// SPDX-License-Identifier: MIT
#include "pdf/optionalcontent.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <vector>

#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

constexpr int kMaxDepth = 32;
constexpr std::size_t kMaxTerms = 10000;

// The items of an array, or the object itself where one stands for an array of one.
std::vector<QPDFObjectHandle> ItemsOf(QPDFObjectHandle object) {
    if (object.isArray()) {
        return object.getArrayAsVector();
    }
    return object.isNull() ? std::vector<QPDFObjectHandle>{} : std::vector{object};
}

// What a group's usage dictionary says for one category; nothing when it is silent.
std::optional<bool> UsageState(const QPDFObjectHandle& group, const std::string& category) {
    const std::string state =
        NameOf(Get(Get(Get(group, "/Usage"), "/" + category), "/" + category + "State"));
    return state.empty() ? std::nullopt : std::optional(state != "OFF");
}

}  // namespace

OptionalContent::OptionalContent(QPDF& qpdf) {
    try {
        ReadConfiguration(Get(Get(qpdf.getRoot(), "/OCProperties"), "/D"));
    } catch (const std::exception&) {
        mBaseVisible = true;  // what cannot be read hides nothing
    }
}

void OptionalContent::ReadConfiguration(const QPDFObjectHandle& configuration) {
    mBaseVisible = NameOf(Get(configuration, "/BaseState")) != "OFF";
    SetStates(Get(configuration, "/ON"), true);
    SetStates(Get(configuration, "/OFF"), false);
    for (const QPDFObjectHandle& usage : ItemsOf(Get(configuration, "/AS"))) {
        if (NameOf(Get(usage, "/Event")) == "Print") {
            ApplyUsage(usage);
        }
    }
}

void OptionalContent::ApplyUsage(const QPDFObjectHandle& usage) {
    for (const QPDFObjectHandle& group : ItemsOf(Get(usage, "/OCGs"))) {
        std::optional<bool> visible;
        for (const QPDFObjectHandle& category : ItemsOf(Get(usage, "/Category"))) {
            const std::optional<bool> state = UsageState(group, NameOf(category));
            visible = state ? visible.value_or(true) && *state : visible;
        }
        if (visible && group.isIndirect()) {
            mStates[group.getObjGen()] = *visible;
        }
    }
}

void OptionalContent::SetStates(QPDFObjectHandle groups, bool visible) {
    const int count = groups.isArray() ? groups.getArrayNItems() : 0;
    for (int i = 0; i < count; ++i) {
        const QPDFObjectHandle group = groups.getArrayItem(i);
        if (group.isIndirect()) {
            mStates[group.getObjGen()] = visible;
        }
    }
}

bool OptionalContent::IsVisible(const QPDFObjectHandle& object) {
    const std::string type = NameOf(Get(object, "/Type"));
    if (type == "OCG") {
        return IsGroupVisible(object);
    }
    return type != "OCMD" || IsMembershipVisible(object);
}

bool OptionalContent::IsGroupVisible(const QPDFObjectHandle& group) const {
    const auto known = mStates.find(group.getObjGen());
    return known == mStates.end() ? mBaseVisible : known->second;
}

bool OptionalContent::IsMembershipVisible(const QPDFObjectHandle& membership) {
    const auto known = mMemberships.find(membership.getObjGen());
    if (membership.isIndirect() && known != mMemberships.end()) {
        return known->second;
    }
    QPDFObjectHandle expression = Get(membership, "/VE");
    std::size_t budget = kMaxTerms;
    const bool visible = expression.isNull() ? EvaluatePolicy(membership)
                                             : EvaluateExpression(expression, 0, budget);
    if (membership.isIndirect()) {
        mMemberships.emplace(membership.getObjGen(), visible);
    }
    return visible;
}

bool OptionalContent::EvaluatePolicy(const QPDFObjectHandle& membership) const {
    std::vector<QPDFObjectHandle> groups = ItemsOf(Get(membership, "/OCGs"));
    groups.erase(std::remove_if(groups.begin(), groups.end(),
                                [](QPDFObjectHandle& group) { return !group.isDictionary(); }),
                 groups.end());
    if (groups.empty()) {
        return true;
    }
    const auto isOn = [this](const QPDFObjectHandle& group) { return IsGroupVisible(group); };
    const std::string policy = NameOf(Get(membership, "/P"));
    if (policy == "AllOn") {
        return std::all_of(groups.begin(), groups.end(), isOn);
    }
    if (policy == "AnyOff") {
        return !std::all_of(groups.begin(), groups.end(), isOn);
    }
    const bool anyOn = std::any_of(groups.begin(), groups.end(), isOn);
    return policy == "AllOff" ? !anyOn : anyOn;
}

bool OptionalContent::EvaluateExpression(QPDFObjectHandle expression, int depth,
                                         std::size_t& budget) const {
    if (depth > kMaxDepth || budget == 0) {
        return true;
    }
    --budget;
    if (!expression.isArray()) {
        return IsGroupVisible(expression);
    }
    const int count = expression.getArrayNItems();
    const std::string name = count > 0 ? NameOf(expression.getArrayItem(0)) : std::string();
    if (name == "Not") {
        return count < 2 || !EvaluateExpression(expression.getArrayItem(1), depth + 1, budget);
    }
    const bool wanted = name == "Or";
    for (int i = 1; i < count; ++i) {
        if (EvaluateExpression(expression.getArrayItem(i), depth + 1, budget) == wanted) {
            return wanted;
        }
    }
    return !wanted;
}

}  // namespace VANTIX::PDF
