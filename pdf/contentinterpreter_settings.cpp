// SPDX-License-Identifier: MIT
#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "pdf/contentinterpreter.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

/// The entries of a graphics-state parameter dictionary (PDF Reference, 4.3.4).
struct ContentInterpreter::Settings {
    using CI = ContentInterpreter;
    using Value = const QPDFObjectHandle&;

    struct Entry {
        std::string_view key;
        void (*apply)(CI&, Value);
    };

    template <void (CI::*Set)(Numbers)>
    static void Number(CI& interpreter, Value value) {
        const std::optional<double> number = NumberOf(value);
        if (number) {
            const float v = ToFloat(*number);
            (interpreter.*Set)(&v);
        }
    }

    static void Dash(CI& interpreter, Value value) {
        QPDFObjectHandle pair = value;
        if (!pair.isArray() || pair.getArrayNItems() != 2) {
            return;
        }
        const double phase = NumberOf(pair.getArrayItem(1)).value_or(0.0);
        interpreter.SetDash(NumbersOf(pair.getArrayItem(0), 512), ToFloat(phase));
    }

    static void Font(CI& interpreter, Value value) {
        QPDFObjectHandle pair = value;
        if (pair.isArray() && pair.getArrayNItems() == 2) {
            interpreter.SetFont(pair.getArrayItem(0),
                                ToFloat(NumberOf(pair.getArrayItem(1)).value_or(0.0)));
        }
    }

    static void Intent(CI& interpreter, Value value) { interpreter.SetIntent(NameOf(value)); }

    template <float HOST::GraphicsParameters::*Alpha>
    static void SetAlpha(CI& interpreter, Value value) {
        const float alpha = std::clamp(ToFloat(NumberOf(value).value_or(1.0)), 0.0F, 1.0F);
        interpreter.State().*Alpha = alpha;
        // What is wholly transparent is simply not painted.
        if (alpha > 0.0F && alpha < 1.0F) {
            interpreter.Lose(TRANSPARENCY::kAlpha);
        }
    }

    template <bool HOST::GraphicsParameters::*Flag>
    static void SetFlag(CI& interpreter, Value value) {
        bool& flag = interpreter.State().*Flag;
        flag = BoolOf(value, flag);
    }

    // Comes before op, which overrides it for other painting than strokes.
    static void Overprint(CI& interpreter, Value value) {
        SetFlag<&HOST::GraphicsParameters::strokeOverprint>(interpreter, value);
        SetFlag<&HOST::GraphicsParameters::fillOverprint>(interpreter, value);
    }

    static void OverprintMode(CI& interpreter, Value value) {
        interpreter.State().overprintMode = IntegerOf(value).value_or(0) == 1 ? 1 : 0;
    }

    static void BlendMode(CI& interpreter, Value value);
    static void SoftMask(CI& interpreter, Value value);
    static void Transfer(CI& interpreter, Value value);

    static const std::array<Entry, 24> kEntries;  // ascending by key
};

void ContentInterpreter::Settings::BlendMode(CI& interpreter, Value value) {
    using Mode = GRAPHICS::TBlendMode;
    static constexpr std::array<std::pair<std::string_view, Mode>, 17> kModes = {{
        {"Normal", Mode::kNormal},
        {"Compatible", Mode::kNormal},
        {"Multiply", Mode::kMultiply},
        {"Screen", Mode::kScreen},
        {"Overlay", Mode::kOverlay},
        {"Darken", Mode::kDarken},
        {"Lighten", Mode::kLighten},
        {"ColorDodge", Mode::kColorDodge},
        {"ColorBurn", Mode::kColorBurn},
        {"HardLight", Mode::kHardLight},
        {"SoftLight", Mode::kSoftLight},
        {"Difference", Mode::kDifference},
        {"Exclusion", Mode::kExclusion},
        {"Hue", Mode::kHue},
        {"Saturation", Mode::kSaturation},
        {"Color", Mode::kColor},
        {"Luminosity", Mode::kLuminosity},
    }};
    QPDFObjectHandle list = value;
    const int count = list.isArray() ? list.getArrayNItems() : 1;
    Mode mode = Mode::kNormal;
    for (int i = 0; i < count; ++i) {
        const std::string name = NameOf(list.isArray() ? list.getArrayItem(i) : list);
        const auto* const found = std::find_if(
            kModes.begin(), kModes.end(), [&](const auto& entry) { return entry.first == name; });
        if (found != kModes.end()) {
            mode = found->second;
            break;
        }
    }
    interpreter.State().blendMode = mode;
    if (mode != Mode::kNormal) {
        interpreter.Lose(TRANSPARENCY::kBlending);
    }
}

void ContentInterpreter::Settings::SoftMask(CI& interpreter, Value value) {
    interpreter.SetSoftMask(value);
}

void ContentInterpreter::Settings::Transfer(CI& interpreter, Value value) {
    const std::string name = NameOf(value);
    if (name != "Identity" && name != "Default") {
        interpreter.mContext.reporter.Warn(
            "transfer", "Transfer functions, halftones and black generation are left out");
    }
}

const std::array<ContentInterpreter::Settings::Entry, 24> ContentInterpreter::Settings::kEntries = {
    {
        {"/AIS", &SetFlag<&HOST::GraphicsParameters::alphaIsShape>},
        {"/BG", &Transfer},
        {"/BG2", &Transfer},
        {"/BM", &BlendMode},
        {"/CA", &SetAlpha<&HOST::GraphicsParameters::strokeAlpha>},
        {"/D", &Dash},
        {"/FL", &Number<&CI::Flatness>},
        {"/Font", &Font},
        {"/HT", &Transfer},
        {"/LC", &Number<&CI::LineCap>},
        {"/LJ", &Number<&CI::LineJoin>},
        {"/LW", &Number<&CI::LineWidth>},
        {"/ML", &Number<&CI::MiterLimit>},
        {"/OP", &Overprint},
        {"/OPM", &OverprintMode},
        {"/RI", &Intent},
        {"/SMask", &SoftMask},
        {"/TK", &SetFlag<&HOST::GraphicsParameters::textKnockout>},
        {"/TR", &Transfer},
        {"/TR2", &Transfer},
        {"/UCR", &Transfer},
        {"/UCR2", &Transfer},
        {"/ca", &SetAlpha<&HOST::GraphicsParameters::fillAlpha>},
        {"/op", &SetFlag<&HOST::GraphicsParameters::fillOverprint>},
    }};

void ContentInterpreter::GraphicsStateDictionary(Numbers) {
    const std::optional<std::string_view> name = LastName();
    if (!name) {
        return;
    }
    const Resources::Entries& entries = mFrame.resources->FindGraphicsState(*name);
    if (entries.empty()) {
        mContext.reporter.Warn("missing-resource",
                               "There is no or an empty graphics state " + std::string(*name));
    }
    for (const auto& [key, value] : entries) {
        const auto* const found = std::lower_bound(
            Settings::kEntries.begin(), Settings::kEntries.end(), key,
            [](const Settings::Entry& entry, const std::string& k) { return entry.key < k; });
        if (found != Settings::kEntries.end() && found->key == key) {
            found->apply(*this, value);
        }
    }
}

}  // namespace VANTIX::PDF
