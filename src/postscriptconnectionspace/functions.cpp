// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/functions.h"

#include <cstring>
#include <string_view>

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/colorroute.h"

namespace VANTIX {

namespace {

using PS::TextBuffer;

/// Writes one procedure.
class Level2Writer {
public:
    Level2Writer(TextBuffer& text, std::size_t bound) : mText(text), mBound(bound) {}

    /// False for a function that has no such form. Stops early once the bound is reached, since
    /// functions may share members and so be far larger written than held.
    bool Write(const COLOR::IColorFunction& function, int depth = 0);

    [[nodiscard]] bool ReachedBound() const { return mText.Size() >= mBound; }

private:
    static constexpr int kMaxDepth = 32;

    void WriteExponential(const COLOR::IExponentialFunction& function);
    bool WriteStitching(const COLOR::IStitchingFunction& function, int depth);
    bool WriteProgram(std::string_view program);
    void WriteSampledInput(const COLOR::IColorFunction& function);
    void WriteSampledInks(const COLOR::IColorFunction& function);

    TextBuffer& mText;
    std::size_t mBound;
};

void Level2Writer::WriteExponential(const COLOR::IExponentialFunction& function) {
    const std::int32_t outputs = function.GetOutputCount();
    const float* c0 = function.GetC0();
    const float* c1 = function.GetC1();
    const float exponent = function.GetExponent();
    mText.Append("dup ", static_cast<std::size_t>(outputs - 1));
    for (std::int32_t i = 0; i < outputs; ++i) {
        const float low = c0 == nullptr ? 0 : c0[i];
        const float high = c1 == nullptr ? 1 : c1[i];
        if (exponent == 1) {
            mText.Format("%d -1 roll %.8g mul %.8g add ", outputs, high - low, low);
        } else if (c0 != nullptr && c1 != nullptr) {
            mText.Format("%d -1 roll %.8g exp %.8g %.8g sub mul %.8g add ", outputs, exponent, high,
                         low, low);
        } else if (c0 != nullptr) {
            mText.Format("%d -1 roll %.8g exp %.8g add ", outputs, exponent, low);
        }
    }
}

bool Level2Writer::WriteStitching(const COLOR::IStitchingFunction& function, int depth) {
    const std::int32_t count = function.GetFunctionCount();
    const float* domain = function.GetDomain();
    const float* bounds = function.GetBounds();
    if (count < 1 || domain == nullptr || (count > 1 && bounds == nullptr)) {
        return false;
    }
    float start = domain[0];
    std::size_t open = 0;
    for (std::int32_t i = 0; i < count && !ReachedBound(); ++i) {
        const bool last = i == count - 1;
        const float end = last ? domain[1] : bounds[i];
        const COLOR::IColorFunction* member = function.GetFunction(i);
        if (member == nullptr && last) {
            return false;
        }
        if (member != nullptr) {
            if (member->GetInputCount() != 1 ||
                member->GetOutputCount() != function.GetOutputCount()) {
                return false;
            }
            if (!last) {
                mText.Format("dup %.8g lt {", end);
                ++open;
            }
            float low = 0;
            float high = 1;
            function.GetEncode(i, low, high);
            // A piece without width holds one point: any divisor gives it, zero stops the job.
            const float width = end == start ? 1 : end - start;
            mText.Format("%.8g sub %.8g div ", start, width);
            mText.Format("%.8g mul %.8g add ", high - low, low);
            if (!Write(*member, depth + 1)) {
                return false;
            }
            mText.Append(last ? "" : "} {");
        }
        start = end;
    }
    mText.Append("\n} ifelse ", open);
    return true;
}

bool Level2Writer::WriteProgram(std::string_view program) {
    const std::size_t start = program.find_first_not_of(std::string_view(" \t\r\n\f\0", 6));
    if (start != std::string_view::npos && program[start] == '{') {
        const std::size_t end = program.rfind('}');
        if (end == std::string_view::npos) {
            return false;
        }
        program = program.substr(start + 1, end - start - 1);
    }
    mText.Append(program);
    return true;
}

/// A table of eight points for each output with linear interpolation.
void Level2Writer::WriteSampledInput(const COLOR::IColorFunction& function) {
    constexpr int kPoints = 8;
    constexpr float kStep = 0.14285715F;
    float values[kPoints][COLOR::kMaxComponents];
    for (int i = 0; i < kPoints; ++i) {
        const float tint = static_cast<float>(i) * kStep;
        function.Evaluate(&tint, values[i]);
    }
    const std::int32_t outputs = function.GetOutputCount();
    mText.Append(" exch pop ", static_cast<std::size_t>(outputs - 1));
    mText.Append("dup ", static_cast<std::size_t>(outputs - 1));
    for (std::int32_t channel = outputs - 1; channel >= 0; --channel) {
        mText.Append("\n[ ");
        for (const auto& point : values) {
            mText.Format("%.8g ", point[channel]);
        }
        mText.Format("]\ndup 3 -1 roll %i mul dup 3 1 roll\n", kPoints - 1);
        mText.Append("floor cvi get 3 1 roll dup 3 1 roll ceiling cvi get\n");
        mText.Append("3 1 roll dup floor sub dup 3 1 roll\n");
        mText.Format("neg 1 add mul 3 1 roll mul add %i 1 roll\n", outputs);
    }
}

/// Each output is 1 - (1 - t0 v0) (1 - t1 v1) …: the inks printed over one another.
void Level2Writer::WriteSampledInks(const COLOR::IColorFunction& function) {
    const std::int32_t inputs = function.GetInputCount();
    const std::int32_t outputs = function.GetOutputCount();
    float values[COLOR::kMaxComponents][COLOR::kMaxComponents];
    for (std::int32_t ink = 0; ink < inputs; ++ink) {
        float tints[COLOR::kMaxComponents] = {};
        tints[ink] = 1;
        function.Evaluate(tints, values[ink]);
    }
    for (std::int32_t i = 0; i < outputs; ++i) {
        mText.Format("1 %i 1 roll ", inputs + 1);
    }
    for (std::int32_t channel = 0; channel < outputs; ++channel) {
        mText.Format("\n%i -1 roll ", inputs + outputs);
        for (std::int32_t ink = 0; ink < inputs; ++ink) {
            mText.Format("%d index %.8g mul 1 cvr exch sub mul ", inputs - ink,
                         values[ink][channel]);
        }
        mText.Format("1 cvr exch sub %i 1 roll ", inputs + 1);
    }
    mText.Append("pop ", static_cast<std::size_t>(inputs));
}

bool Level2Writer::Write(const COLOR::IColorFunction& function, int depth) {
    const std::int32_t inputs = function.GetInputCount();
    if (depth > kMaxDepth || !IsComponentCount(inputs) ||
        !IsComponentCount(function.GetOutputCount())) {
        return false;
    }
    if (ReachedBound()) {
        return true;
    }
    const auto* exponential =
        FindInterface<COLOR::IExponentialFunction>(&function, COLOR::IID_IEXPONENTIALFUNCTION);
    if (exponential != nullptr && inputs == 1) {
        WriteExponential(*exponential);
        return true;
    }
    const auto* stitching =
        FindInterface<COLOR::IStitchingFunction>(&function, COLOR::IID_ISTITCHINGFUNCTION);
    if (stitching != nullptr && inputs == 1) {
        return WriteStitching(*stitching, depth);
    }
    const auto* calculator =
        FindInterface<COLOR::ICalculatorFunction>(&function, COLOR::IID_ICALCULATORFUNCTION);
    if (calculator != nullptr && calculator->GetProgram() != nullptr) {
        return WriteProgram(calculator->GetProgram());
    }
    if (FindInterface<COLOR::ISampledFunction>(&function, COLOR::IID_ISAMPLEDFUNCTION) == nullptr) {
        return false;
    }
    inputs == 1 ? WriteSampledInput(function) : WriteSampledInks(function);
    return true;
}

}  // namespace

bool AppendLevel2Procedure(const COLOR::IColorFunction& function, PS::TextBuffer& text,
                           std::size_t bound) {
    const std::size_t before = text.Size();
    Level2Writer writer(text, before + bound);
    if (!writer.Write(function)) {
        LogError("src/postscriptconnectionspace")
            << "I don't understand this type of color function yet.";
        return false;
    }
    if (writer.ReachedBound()) {
        LogError("src/postscriptconnectionspace")
            << "Input buffer size " << bound << " is smaller than the size ("
            << text.Size() - before << ") of the PostScript function.";
        return false;
    }
    return true;
}

// The outputs of a tint function are already what an interpreter wants of the target: ink amounts
// for CMYK, L a b for Lab.
std::int32_t ConvertFunctionToLevel2PostScript(const COLOR::IConnectionColorSpace* /*target*/,
                                               const COLOR::IColorFunction& function, char* buffer,
                                               std::int32_t size) {
    if (buffer == nullptr || size <= 0) {
        return 0;
    }
    PS::TextBuffer text;
    *buffer = 0;
    if (!AppendLevel2Procedure(function, text, static_cast<std::size_t>(size))) {
        return 0;
    }
    return text.CopyTo(buffer, size);
}

}  // namespace VANTIX
