// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "pdf/contentinterpreter.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

constexpr std::array<double, 6> kIdentity = {1, 0, 0, 1, 0, 0};

// Beyond these magnitudes the reals of interpreters run over.
constexpr double kLargestScale = 1e15;

constexpr std::size_t kMaxDashLengths = 512;

bool IsUsable(const std::array<double, 6>& matrix) {
    return IsInvertible(matrix) && std::all_of(matrix.begin(), matrix.end(), [](double v) {
               return std::abs(v) <= kLargestScale;
           });
}

}  // namespace

void ContentInterpreter::SaveLevel(Numbers) {
    if (!Save()) {
        ++mFrame.ignoredSaves;
    }
}

void ContentInterpreter::RestoreLevel(Numbers) {
    if (mFrame.ignoredSaves > 0) {
        --mFrame.ignoredSaves;
    } else if (mLevels.size() > mFrame.floor) {
        RestoreTo(mLevels.size() - 1);
    }
}

bool ContentInterpreter::Concat(const std::array<double, 6>& matrix) {
    if (matrix == kIdentity) {
        return true;
    }
    const std::array<double, 6> product = Multiply(matrix, Top().matrix);
    if (!IsUsable(matrix) || !IsUsable(product)) {
        mContext.reporter.Warn("matrix", "What a matrix reduces to nothing is left out");
        Top().isCollapsed = true;
        return false;
    }
    // Points stay where they are, though a path should not meet a change of the matrix.
    mPath.Transform(Inverse(matrix).value_or(kIdentity));
    Top().matrix = product;
    std::array<float, 6> m{};
    std::transform(matrix.begin(), matrix.end(), m.begin(), ToFloat);
    mContext.space.Concat(m[0], m[1], m[2], m[3], m[4], m[5]);
    return true;
}

void ContentInterpreter::ConcatMatrix(Numbers v) {
    Concat({v[0], v[1], v[2], v[3], v[4], v[5]});
}

void ContentInterpreter::ClipToBox(const std::array<double, 4>& box) {
    Path path;
    path.Rectangle(ToFloat(box[0]), ToFloat(box[1]), ToFloat(box[2] - box[0]),
                   ToFloat(box[3] - box[1]));
    path.PlayTo(mContext.space);
    mContext.space.Clip();
    mContext.space.NewPath();
    if (KeepsClips()) {
        KeepClip({Top().matrix, path, false, {}});
    }
    std::array<double, 4>& clip = Top().clipBox;
    const std::array<double, 4> bounds = TransformBox(Top().matrix, box);
    for (std::size_t i = 0; i < 2; ++i) {
        clip[i] = std::max(clip[i], bounds[i]);
        clip[i + 2] = std::max(clip[i], std::min(clip[i + 2], bounds[i + 2]));
    }
}

std::array<double, 4> ContentInterpreter::ClipBounds() {
    return TransformBox(Inverse(Top().matrix).value_or(kIdentity), Top().clipBox);
}

void ContentInterpreter::LineWidth(Numbers v) {
    const float width = std::abs(v[0]);
    if (std::exchange(Top().line.width, width) != width) {
        mContext.space.SetLineWidth(width);
    }
}

void ContentInterpreter::LineCap(Numbers v) {
    const auto cap = static_cast<std::int32_t>(v[0]);
    if (cap < 0 || cap > 2) {
        BadOperands();
    } else if (std::exchange(Top().line.cap, cap) != cap) {
        mContext.space.SetLineCap(cap);
    }
}

void ContentInterpreter::LineJoin(Numbers v) {
    const auto join = static_cast<std::int32_t>(v[0]);
    if (join < 0 || join > 2) {
        BadOperands();
    } else if (std::exchange(Top().line.join, join) != join) {
        mContext.space.SetLineJoin(join);
    }
}

void ContentInterpreter::MiterLimit(Numbers v) {
    const float limit = std::max(v[0], 1.0F);  // interpreters refuse less
    if (std::exchange(Top().line.miterLimit, limit) != limit) {
        mContext.space.SetMiterLimit(limit);
    }
}

void ContentInterpreter::Flatness(Numbers v) {
    const float flatness = std::clamp(v[0], 0.0F, 100.0F);
    if (std::exchange(Top().line.flatness, flatness) != flatness) {
        mContext.space.SetFlatness(flatness);
    }
}

void ContentInterpreter::Dash(Numbers) {
    const std::vector<Operand>& operands = Operands();
    const bool isArray = !operands.empty() && operands.front().kind == OperandKind::kArray;
    const std::size_t count = isArray ? operands.front().extent : 0;
    if (!isArray || operands.size() != count + 2 || count > kMaxDashLengths ||
        operands.back().kind != OperandKind::kNumber) {
        BadOperands();
        return;
    }
    mValues.clear();
    for (std::size_t i = 1; i <= count; ++i) {
        mValues.push_back(ToFloat(operands[i].number));
    }
    SetDash(mValues, ToFloat(operands.back().number));
}

void ContentInterpreter::SetDash(std::vector<float> lengths, float phase) {
    double sum = 0.0;
    bool isValid = true;
    for (const float length : lengths) {
        sum += length;
        isValid = isValid && length >= 0.0F;
    }
    if (!isValid || sum <= 0.0) {
        lengths.clear();
    }
    if (lengths.empty()) {
        phase = 0.0F;
    } else if (phase < 0.0F) {
        const double period = lengths.size() % 2 == 0 ? sum : 2.0 * sum;
        phase = ToFloat(phase + period * std::ceil(-phase / period));
    }
    LineState& line = Top().line;
    const bool isShort = lengths.size() <= LineState::kMaxDash;
    if (isShort && lengths.size() == line.dashCount && phase == line.dashPhase &&
        std::equal(lengths.begin(), lengths.end(), line.dash.begin())) {
        return;
    }
    line.dashCount = lengths.size();
    line.dashPhase = phase;
    mContext.space.SetDash(phase, lengths.data(), static_cast<std::int32_t>(lengths.size()));
    if (isShort) {
        std::copy(lengths.begin(), lengths.end(), line.dash.begin());
    } else {
        line.longDash = std::make_shared<const std::vector<float>>(std::move(lengths));
    }
}

void ContentInterpreter::RenderingIntent(Numbers) {
    const std::optional<std::string_view> name = LastName();
    if (name) {
        SetIntent(DecodeName(*name));
    }
}

void ContentInterpreter::SetIntent(const std::string& name) {
    using COLOR::TRenderingIntent;
    constexpr std::array<std::pair<std::string_view, TRenderingIntent>, 4> kIntents = {{
        {"AbsoluteColorimetric", TRenderingIntent::kAbsoluteColorimetric},
        {"RelativeColorimetric", TRenderingIntent::kRelativeColorimetric},
        {"Saturation", TRenderingIntent::kSaturation},
        {"Perceptual", TRenderingIntent::kPerceptual},
    }};
    if (mContext.intent || !MayColor()) {
        return;
    }
    const auto* const found = std::find_if(kIntents.begin(), kIntents.end(),
                                           [&](const auto& entry) { return entry.first == name; });
    // PDF asks for the colorimetric intent in the place of an unknown one.
    const TRenderingIntent intent =
        found == kIntents.end() ? TRenderingIntent::kRelativeColorimetric : found->second;
    HOST::GraphicsParameters& state = State();
    if (state.intent != intent || state.intent2 != intent) {
        state.intent = state.intent2 = intent;
        mSetsIntent = true;
        mContext.space.SelectRenderingIntent(intent);
        mContext.space.SelectRenderingIntent2(intent);
    }
}

}  // namespace VANTIX::PDF
