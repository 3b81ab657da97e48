// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/functiondictionaries.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "core/graphics/pluginhelper/colorhelpers.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/functiongrid.h"

namespace VANTIX {

namespace {

using COLOR::IColorFunction;
using COLOR::IConnectionColorSpace;
using COLOR::TRenderingIntent;
using PS::TextBuffer;

constexpr const char* kModule = "src/postscriptconnectionspace";
constexpr const char* kDataSource = "\t\t/DataSource ";
constexpr int kMaxDepth = 32;
/// Functions may share members, and so be far larger written than held.
constexpr std::size_t kMaxText = std::size_t{1} << 24U;

using Components = std::array<float, COLOR::kMaxComponents>;

Status Unknown() {
    LogError(kModule) << "I don't know how to write this function to PostScript.";
    return STATUS::kNotSupported;
}

/// Two floats for an input or output.
std::pair<float, float> PairAt(const float* pairs, std::int32_t index) {
    pairs += std::ptrdiff_t{2} * index;
    return {pairs[0], pairs[1]};
}

/// Whether each of the pairs is 0 and 1.
bool AreUnit(const float* pairs, std::int32_t count) {
    std::int32_t i = 0;
    while (i < count && PairAt(pairs, i) == std::pair(0.0F, 1.0F)) {
        ++i;
    }
    return i == count;
}

/// Whether each of the pairs is an interval.
bool AreIntervals(const float* pairs, std::int32_t count) {
    std::int32_t i = 0;
    while (i < count && PairAt(pairs, i).first < PairAt(pairs, i).second) {
        ++i;
    }
    return i == count;
}

/// Whether the ends of a curve must be converted: components of one kind are near enough to those
/// of another profile of that kind.
bool ConvertsKind(const ColorRoute& route) {
    const FourCC family = GRAPHICS::HELPER::GetOwnFamily(&route.source);
    return route.Converts() &&
           (family == 0 || family != GRAPHICS::HELPER::GetOwnFamily(route.destination));
}

/// Appends "<", two digits a byte in rows of 40 bytes, and ">".
void AppendHexString(TextBuffer& text, std::span<const std::uint8_t> bytes) {
    constexpr std::size_t kRow = 40;
    constexpr const char* kDigits = "0123456789ABCDEF";
    char row[2 * kRow];
    text.Append("<");
    for (std::size_t begin = 0; begin < bytes.size(); begin += kRow) {
        const std::size_t count = std::min(kRow, bytes.size() - begin);
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint8_t byte = bytes[begin + i];
            row[2 * i] = kDigits[byte >> 4U];
            row[2 * i + 1] = kDigits[byte & 15U];
        }
        text.Append({row, 2 * count});
        text.Append(count == kRow ? "\n" : "");
    }
    text.Append(">\n");
}

/// Appends one function.
class DictionaryWriter {
public:
    DictionaryWriter(TextBuffer& text, const ColorRoute& route) : mText(text), mRoute(route) {}

    Status Write(const IColorFunction& function, int depth = 0);
    Status WriteSampled(const COLOR::ISampledFunction& function);

private:
    /// What holds for all functions. `complaint` is for one without a domain.
    Status Check(const IColorFunction& function, int depth, const char* complaint) const;
    Status WriteArray(const COLOR::IFunctionArray& function, int depth);
    Status WriteKind(const IColorFunction& function, int depth);
    Status WriteExponential(const COLOR::IExponentialFunction& function);
    Status WriteStitching(const COLOR::IStitchingFunction& function, int depth);
    /// The table of any function.
    Status WriteGrid(const IColorFunction& function, int depth);
    Status WriteOwnSamples(const COLOR::ISampledFunction& function);
    Status WriteConvertedSamples(const COLOR::ISampledFunction& function);

    /// `values` with a blank behind each.
    void AppendReals(const float* values, std::int32_t count) {
        std::for_each(values, values + count,
                      [this](float value) { mText.Format("%.8g ", value); });
    }

    /// An entry with `pairs` pairs of values.
    void AppendPairs(const char* key, const float* values, std::int32_t pairs) {
        mText.Append(key);
        AppendReals(values, 2 * pairs - 1);
        mText.Format("%.8g]\n", PairAt(values, pairs - 1).second);
    }

    /// An entry with pairs of values cut to whole numbers; nothing for null.
    void AppendWholePairs(const char* key, const float* values, std::int32_t pairs) {
        if (values == nullptr) {
            return;
        }
        mText.Append(key);
        std::for_each(values, values + std::ptrdiff_t{2} * pairs, [this](float value) {
            const float whole = std::isnan(value) ? 0 : std::clamp(value, -2e9F, 2e9F);
            mText.Format("%d ", static_cast<std::int32_t>(whole));
        });
        mText.Append("]\n");
    }

    void AppendData(std::span<const std::uint8_t> bytes) {
        mText.Append(kDataSource);
        AppendHexString(mText, bytes);
    }

    TextBuffer& mText;
    const ColorRoute& mRoute;
};

Status DictionaryWriter::Check(const IColorFunction& function, int depth,
                               const char* complaint) const {
    const std::int32_t inputs = function.GetInputCount();
    if (depth > kMaxDepth || mText.Size() > kMaxText || !IsComponentCount(inputs) ||
        !IsComponentCount(function.GetOutputCount())) {
        return Unknown();
    }
    if (function.GetDomain() == nullptr || !AreIntervals(function.GetDomain(), inputs)) {
        LogError(kModule) << complaint;
        return STATUS::kInvalidArgument;
    }
    return STATUS::kOk;
}

Status DictionaryWriter::Write(const IColorFunction& function, int depth) {
    if (const auto* array =
            FindInterface<COLOR::IFunctionArray>(&function, COLOR::IID_IFUNCTIONARRAY)) {
        return WriteArray(*array, depth);
    }
    if (FindInterface<COLOR::ICalculatorFunction>(&function, COLOR::IID_ICALCULATORFUNCTION) !=
        nullptr) {
        return WriteGrid(function, depth);
    }
    Status status = Check(function, depth, "There is no domain of the function.!!!");
    if (status != STATUS::kOk) {
        return status;
    }
    AppendPairs("\n\t<<\n\t\t/Domain [", function.GetDomain(), function.GetInputCount());
    const float* range = mRoute.destination == nullptr ? function.GetRange() : nullptr;
    if (range != nullptr && !AreUnit(range, function.GetOutputCount())) {
        AppendPairs("\t\t/Range [", range, function.GetOutputCount());
    }
    status = WriteKind(function, depth);
    mText.Append("\t>>\n");
    return status;
}

Status DictionaryWriter::WriteKind(const IColorFunction& function, int depth) {
    if (const auto* exponential = FindInterface<COLOR::IExponentialFunction>(
            &function, COLOR::IID_IEXPONENTIALFUNCTION)) {
        return WriteExponential(*exponential);
    }
    if (const auto* stitching =
            FindInterface<COLOR::IStitchingFunction>(&function, COLOR::IID_ISTITCHINGFUNCTION)) {
        return WriteStitching(*stitching, depth);
    }
    const auto* sampled =
        FindInterface<COLOR::ISampledFunction>(&function, COLOR::IID_ISAMPLEDFUNCTION);
    return sampled == nullptr ? Unknown() : WriteSampled(*sampled);
}

Status DictionaryWriter::WriteArray(const COLOR::IFunctionArray& function, int depth) {
    if (mRoute.Converts()) {
        return WriteGrid(function, depth);
    }
    // An array stands for a function of a shading, never for a member of another function.
    if (depth > 0) {
        return Unknown();
    }
    mText.Append("[\n");
    for (std::int32_t i = 0; i < function.GetFunctionCount(); ++i) {
        const IColorFunction* member = function.GetFunction(i);
        const bool fits = member != nullptr && member->GetOutputCount() == 1;
        const Status status = fits ? Write(*member, depth + 1) : Unknown();
        if (status != STATUS::kOk) {
            LogError(kModule) << "Some problem in wrting array of function dictionary!";
            return status;
        }
    }
    mText.Append("\t\t]\n");
    return STATUS::kOk;
}

Status DictionaryWriter::WriteExponential(const COLOR::IExponentialFunction& function) {
    const float* domain = function.GetDomain();
    const float exponent = function.GetExponent();
    // Powers that some input does not have (PostScript Language Reference, 3.10.3).
    const bool isWhole = std::trunc(exponent) == exponent;
    if (function.GetInputCount() != 1 || (!isWhole && domain[0] < 0) ||
        (exponent < 0 && domain[0] <= 0 && domain[1] >= 0)) {
        return Unknown();
    }
    std::int32_t count = function.GetOutputCount();
    Components ends[2]{};
    ends[1].fill(1);
    const float* given[] = {function.GetC0(), function.GetC1()};
    for (std::size_t i = 0; i < 2; ++i) {
        if (given[i] != nullptr) {
            std::copy_n(given[i], count, ends[i].begin());
        }
    }
    if (ConvertsKind(mRoute)) {
        if (count != mRoute.source.GetComponentCount() || !mRoute.Apply(ends[0].data()) ||
            !mRoute.Apply(ends[1].data())) {
            return Unknown();
        }
        count = mRoute.Target().GetComponentCount();
    }
    mText.Append("\t\t/FunctionType 2\n/C0 [");
    AppendReals(ends[0].data(), count);
    mText.Append("]/C1 [");
    AppendReals(ends[1].data(), count);
    mText.Format("]/N %.8g\n", exponent);
    return STATUS::kOk;
}

Status DictionaryWriter::WriteStitching(const COLOR::IStitchingFunction& function, int depth) {
    const std::int32_t count = function.GetFunctionCount();
    const float* bounds = function.GetBounds();
    if (function.GetInputCount() != 1 || count < 1 || (count > 1 && bounds == nullptr)) {
        return Unknown();
    }
    mText.Append("\t\t/FunctionType 3\n\t\t/Bounds [");
    float earlier = function.GetDomain()[0];
    for (std::int32_t i = 0; i < count - 1; ++i) {
        if (!(bounds[i] >= earlier && bounds[i] <= function.GetDomain()[1])) {
            return Unknown();
        }
        earlier = bounds[i];
        mText.Format(" %.8g ", earlier);
    }
    mText.Append("]\n\t\t/Encode [");
    for (std::int32_t i = 0; i < count; ++i) {
        float low = 0;
        float high = 1;
        function.GetEncode(i, low, high);
        mText.Format("%.8g %.8g ", low, high);
    }
    mText.Append("]\n\t\t/Functions [");
    for (std::int32_t i = 0; i < count; ++i) {
        const IColorFunction* member = function.GetFunction(i);
        const bool fits = member != nullptr && member->GetInputCount() == 1 &&
                          member->GetOutputCount() == function.GetOutputCount();
        const Status status = fits ? Write(*member, depth + 1) : Unknown();
        if (status != STATUS::kOk) {
            return status;
        }
    }
    mText.Append("]\n");
    return STATUS::kOk;
}

Status DictionaryWriter::WriteSampled(const COLOR::ISampledFunction& function) {
    const std::int32_t inputs = function.GetInputCount();
    const std::int32_t* sizes = function.GetSizes();
    if (sizes == nullptr || !IsComponentCount(inputs) || function.GetSamples().size() > kMaxText) {
        return Unknown();
    }
    mText.Format("\t\t/FunctionType 0\n\t\t/BitsPerSample %d\n\t\t/Size [",
                 mRoute.Converts() ? 8 : function.GetBitsPerSample());
    std::for_each(sizes, sizes + inputs, [this](std::int32_t size) { mText.Format("%d ", size); });
    mText.Format("]\n\t\t/Order %d\n", function.GetOrder());
    AppendWholePairs("\t\t/Encode [", function.GetEncode(), inputs);
    return mRoute.Converts() ? WriteConvertedSamples(function) : WriteOwnSamples(function);
}

Status DictionaryWriter::WriteOwnSamples(const COLOR::ISampledFunction& function) {
    const std::int32_t outputs = function.GetOutputCount();
    if (function.GetRange() == nullptr || !IsComponentCount(outputs)) {
        return Unknown();
    }
    AppendWholePairs("\t\t/Decode [", function.GetDecode(), outputs);
    AppendPairs("\t\t/Range [", function.GetRange(), outputs);
    AppendData(function.GetSamples());
    return STATUS::kOk;
}

Status DictionaryWriter::WriteConvertedSamples(const COLOR::ISampledFunction& function) {
    const std::int32_t count = mRoute.Target().GetComponentCount();
    if (count != 1 && count != 3 && count != 4) {
        LogError(kModule) << "Currently we do not support a channelcount of " << count;
        return STATUS::kNotSupported;
    }
    const auto convert = [&](std::uint8_t* out, std::int32_t* size) {
        return function.ConvertSamples(mRoute.source, *mRoute.destination, mRoute.first,
                                       mRoute.second, out, size);
    };
    std::int32_t size = 0;
    if (!convert(nullptr, &size) || size <= 0 || static_cast<std::size_t>(size) > kMaxText) {
        return Unknown();
    }
    std::vector<std::uint8_t> samples(static_cast<std::size_t>(size));
    if (!convert(samples.data(), &size)) {
        return Unknown();
    }
    for (const char* key : {"\t\t/Range [", "\t\t/Decode ["}) {
        mText.Append(key);
        mText.Append("0 1 ", static_cast<std::size_t>(count - 1));
        mText.Append("0 1]\n");
    }
    AppendData(samples);
    return STATUS::kOk;
}

Status DictionaryWriter::WriteGrid(const IColorFunction& function, int depth) {
    const Status status =
        Check(function, depth, "Input function must does have domain entry which is must!!!");
    if (status != STATUS::kOk) {
        return status;
    }
    const std::int32_t inputs = function.GetInputCount();
    const std::int32_t count =
        mRoute.Converts() ? mRoute.Target().GetComponentCount() : function.GetOutputCount();
    if (inputs > 2 || !IsComponentCount(count)) {
        LogError(kModule) << "Input PostScript Calculator function is a" << inputs << "-in-"
                          << function.GetOutputCount() << "-out function";
        return STATUS::kNotSupported;
    }
    const FunctionGrid grid(function, mRoute);
    const auto outputs = static_cast<std::size_t>(count);
    const auto [columns, rows] = grid.Sizes();
    std::vector<std::uint8_t> samples;
    if (!grid.Sample(outputs, samples)) {
        return Unknown();
    }
    mText.Append("\n\t<<\n\t\t/Domain [");
    AppendReals(function.GetDomain(), 2 * inputs);
    mText.Append("]\n\t\t/FunctionType 0\n\t\t/Range [");
    for (std::size_t i = 0; i < outputs; ++i) {
        const auto [low, high] = grid.Limits(i);
        mText.Format(" %.8g %.8g ", low, high);
    }
    mText.Append("]\n\t\t/BitsPerSample 8\n");
    if (inputs == 1) {
        mText.Format("\t\t/Encode [0 %d]\n\t\t/Size [%d]\n", columns - 1, columns);
    } else {
        mText.Format("\t\t/Encode [0 %d 0 %d]\n\t\t/Size [%d %d]\n", columns - 1, rows - 1, columns,
                     rows);
    }
    AppendData(samples);
    mText.Append("\n\t>>");
    return STATUS::kOk;
}

/// What `append` gives, or the status of memory that could not be had.
template <class Append>
Status Guarded(TextBuffer& text, const Append& append) {
    try {
        return append();
    } catch (const std::bad_alloc&) {
        LogError(kModule) << "Insufficient memory to create a buffer of " << text.Size()
                          << " bytes.";
        return STATUS::kOutOfMemory;
    }
}

/// Writes what `append` puts into a text, or nothing when it fails.
template <class Append>
Status WriteAtOnce(IO::IOutputFilterStack& out, const Append& append) {
    TextBuffer text(0);
    const Status status = Guarded(text, [&] { return append(text); });
    return status == STATUS::kOk
               ? out.Write(text.View().data(), static_cast<std::int32_t>(text.Size()))
               : status;
}

}  // namespace

Status AppendFunction(const IColorFunction& function, const ColorRoute& route, TextBuffer& text) {
    return Guarded(text, [&] {
        return function.GetOutputCount() == route.source.GetComponentCount()
                   ? DictionaryWriter(text, route).Write(function)
                   : Unknown();
    });
}

Status WriteHexStringDataSource(IO::IOutputFilterStack& out, const void* data,
                                std::int32_t length) {
    if (length < 0 || (data == nullptr && length > 0)) {
        return STATUS::kInvalidArgument;
    }
    const auto count = static_cast<std::size_t>(length);
    const std::size_t size = (count + 39) / 40 + 2 * count + 3;
    try {
        TextBuffer text(size);
        AppendHexString(text, {static_cast<const std::uint8_t*>(data), count});
        const std::string_view key = kDataSource;
        const Status status = out.Write(key.data(), static_cast<std::int32_t>(key.size()));
        return status == STATUS::kOk
                   ? out.Write(text.View().data(), static_cast<std::int32_t>(text.Size()))
                   : status;
    } catch (const std::bad_alloc&) {
        LogError(kModule) << "Insufficient memory to create a buffer of " << size << " bytes.";
        return STATUS::kOutOfMemory;
    }
}

Status WriteFunctionToPostScript(IClassFactory& /*factory*/, const IColorFunction& function,
                                 IConnectionColorSpace& source, IConnectionColorSpace* destination,
                                 TRenderingIntent first, TRenderingIntent second,
                                 IO::IOutputFilterStack& out) {
    const ColorRoute route{source, destination, first, second};
    return WriteAtOnce(out,
                       [&](TextBuffer& text) { return AppendFunction(function, route, text); });
}

Status WriteCompositeFunctionToPostScript(IClassFactory& factory, const IColorFunction& function,
                                          IConnectionColorSpace& source,
                                          IConnectionColorSpace* destination,
                                          TRenderingIntent first, TRenderingIntent second,
                                          IO::IOutputFilterStack& out) {
    if (FindInterface<COLOR::IFunctionArray>(&function, COLOR::IID_IFUNCTIONARRAY) == nullptr) {
        LogError(kModule) << "Input function is not a composite function (an array of functions)!";
        return STATUS::kInvalidArgument;
    }
    return WriteFunctionToPostScript(factory, function, source, destination, first, second, out);
}

Status WriteSampledFunctionToLevel3PostScript(IClassFactory& /*factory*/,
                                              COLOR::ISampledFunction* sampled,
                                              const IColorFunction& /*function*/,
                                              IConnectionColorSpace& source,
                                              IConnectionColorSpace* destination,
                                              TRenderingIntent first, TRenderingIntent second,
                                              IO::IOutputFilterStack& out) {
    if (sampled == nullptr) {
        return STATUS::kInvalidArgument;
    }
    const ColorRoute route{source, destination, first, second};
    return WriteAtOnce(out, [&](TextBuffer& text) {
        return DictionaryWriter(text, route).WriteSampled(*sampled);
    });
}

void WritePostScriptCalculatorFunctionToPostScript(IClassFactory& factory,
                                                   const IColorFunction* function,
                                                   IConnectionColorSpace& source,
                                                   IConnectionColorSpace* destination,
                                                   TRenderingIntent first, TRenderingIntent second,
                                                   IO::IOutputFilterStack& out) {
    if (FindInterface<COLOR::ICalculatorFunction>(function, COLOR::IID_ICALCULATORFUNCTION) ==
        nullptr) {
        LogError(kModule) << "Input function must be PostScript Calculator function!!!";
        return;
    }
    WriteFunctionToPostScript(factory, *function, source, destination, first, second, out);
}

}  // namespace VANTIX
