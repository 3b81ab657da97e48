// SPDX-License-Identifier: MIT
#include "pdf/objects.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <qpdf/Pipeline.hh>
#include <qpdf/Pl_Flate.hh>
#include <stdexcept>

namespace VANTIX::PDF {

namespace {

/// The end of a chain of decoders: hands on what comes, and stops the chain at the limit.
class BoundedSink final : public Pipeline {
public:
    BoundedSink(const Take& take, std::size_t limit)
        : Pipeline("bounded sink", nullptr), mTake(take), mRoom(limit) {}

    void write(const unsigned char* data, std::size_t length) override {
        const std::size_t taken = std::min(length, mRoom);
        mTake({reinterpret_cast<const char*>(data), taken});
        mRoom -= taken;
        if (length > taken) {
            mFull = true;
            throw std::runtime_error("stream data exceed the limit");
        }
    }

    void finish() override {}

    [[nodiscard]] bool IsFull() const { return mFull; }

private:
    const Take& mTake;
    std::size_t mRoom;
    bool mFull = false;
};

bool IsPlainFlate(const QPDFObjectHandle& stream) {
    QPDFObjectHandle filter = Get(stream, "/Filter");
    if (filter.isArray() && filter.getArrayNItems() == 1) {
        filter = filter.getArrayItem(0);
    }
    const std::string name = NameOf(filter);
    return (name == "FlateDecode" || name == "Fl") && Get(stream, "/DecodeParms").isNull();
}

void Inflate(QPDFObjectHandle stream, Pipeline& sink) {
    constexpr std::size_t kSlice = std::size_t{16} << 10U;
    const auto coded = stream.getRawStreamData();
    Pl_Flate inflater("content", &sink, Pl_Flate::a_inflate);
    for (std::size_t at = 0; at < coded->getSize(); at += kSlice) {
        inflater.write(coded->getBuffer() + at, std::min(kSlice, coded->getSize() - at));
    }
    inflater.finish();
}

StreamResult PipeData(QPDFObjectHandle& stream, std::size_t limit, const Take& take,
                      qpdf_stream_decode_level_e level) {
    if (!stream.isStream()) {
        return StreamResult::kNoStream;
    }
    BoundedSink sink(take, limit);
    bool known = false;
    bool good = false;
    try {
        good = stream.pipeStreamData(&sink, &known, 0, level, true);
    } catch (const std::exception&) {
        good = false;
    }
    if (!known && level != qpdf_dl_none) {
        return StreamResult::kUnknownFilter;
    }
    if (sink.IsFull()) {
        return StreamResult::kTooLarge;
    }
    return good ? StreamResult::kOk : StreamResult::kDamaged;
}

}  // namespace

float ToFloat(double value) {
    if (std::isnan(value)) {
        return 0.0F;
    }
    return static_cast<float>(std::clamp(value, -kLargestNumber, kLargestNumber));
}

QPDFObjectHandle Get(QPDFObjectHandle object, const std::string& key) {
    if (object.isStream()) {
        object = object.getDict();
    }
    return object.isDictionary() ? object.getKey(key) : QPDFObjectHandle::newNull();
}

bool IsNull(QPDFObjectHandle object) {
    return object.isNull();
}

std::string NameOf(QPDFObjectHandle object) {
    return object.isName() ? object.getName().substr(1) : std::string();
}

std::optional<double> NumberOf(QPDFObjectHandle object) {
    double value = 0.0;
    if (!object.isNumber() || !object.getValueAsNumber(value) || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

std::optional<std::int32_t> IntegerOf(const QPDFObjectHandle& object) {
    const std::optional<double> value = NumberOf(object);
    if (!value || std::abs(*value) > std::numeric_limits<std::int32_t>::max()) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(*value);
}

bool BoolOf(QPDFObjectHandle object, bool fallback) {
    return object.isBool() ? object.getBoolValue() : fallback;
}

std::vector<float> NumbersOf(QPDFObjectHandle object, std::size_t limit) {
    std::vector<float> numbers;
    if (!object.isArray() || static_cast<std::size_t>(object.getArrayNItems()) > limit) {
        return numbers;
    }
    const int count = object.getArrayNItems();
    numbers.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const std::optional<double> number = NumberOf(object.getArrayItem(i));
        if (!number) {
            return {};
        }
        numbers.push_back(ToFloat(*number));
    }
    return numbers;
}

std::optional<std::array<double, 4>> RectangleOf(const QPDFObjectHandle& object) {
    const std::vector<float> n = NumbersOf(object, 4);
    if (n.size() != 4) {
        return std::nullopt;
    }
    return std::array<double, 4>{std::min(n[0], n[2]), std::min(n[1], n[3]), std::max(n[0], n[2]),
                                 std::max(n[1], n[3])};
}

std::array<double, 6> MatrixOf(const QPDFObjectHandle& object) {
    const std::vector<float> n = NumbersOf(object, 6);
    std::array<double, 6> matrix{1, 0, 0, 1, 0, 0};
    if (n.size() == matrix.size()) {
        std::copy(n.begin(), n.end(), matrix.begin());
    }
    return matrix;
}

std::array<double, 6> Multiply(const std::array<double, 6>& inner,
                               const std::array<double, 6>& outer) {
    const auto& [a, b, c, d, e, f] = inner;
    const auto& o = outer;
    return {a * o[0] + b * o[2], a * o[1] + b * o[3],        c * o[0] + d * o[2],
            c * o[1] + d * o[3], e * o[0] + f * o[2] + o[4], e * o[1] + f * o[3] + o[5]};
}

std::optional<std::array<double, 6>> Inverse(const std::array<double, 6>& m) {
    const double determinant = m[0] * m[3] - m[1] * m[2];
    if (determinant == 0.0 || !std::isfinite(1.0 / determinant)) {
        return std::nullopt;
    }
    return std::array<double, 6>{m[3] / determinant,
                                 -m[1] / determinant,
                                 -m[2] / determinant,
                                 m[0] / determinant,
                                 (m[2] * m[5] - m[3] * m[4]) / determinant,
                                 (m[1] * m[4] - m[0] * m[5]) / determinant};
}

std::array<double, 4> TransformBox(const std::array<double, 6>& matrix,
                                   const std::array<double, 4>& box) {
    std::array<double, 4> bounds{};
    for (std::size_t corner = 0; corner < 4; ++corner) {
        const double x = box[corner % 2 == 0 ? 0 : 2];
        const double y = box[corner < 2 ? 1 : 3];
        const double px = x * matrix[0] + y * matrix[2] + matrix[4];
        const double py = x * matrix[1] + y * matrix[3] + matrix[5];
        bounds = corner == 0
                     ? std::array<double, 4>{px, py, px, py}
                     : std::array<double, 4>{std::min(bounds[0], px), std::min(bounds[1], py),
                                             std::max(bounds[2], px), std::max(bounds[3], py)};
    }
    return bounds;
}

bool IsInvertible(const std::array<double, 6>& matrix) {
    const double determinant = matrix[0] * matrix[3] - matrix[1] * matrix[2];
    const bool finite =
        std::all_of(matrix.begin(), matrix.end(), [](double v) { return std::isfinite(v); });
    return finite && std::abs(determinant) > std::numeric_limits<float>::min();
}

StreamResult AppendStreamData(QPDFObjectHandle stream, std::string& out, std::size_t limit) {
    const std::size_t before = out.size();
    const StreamResult result = PipeData(
        stream, limit - std::min(limit, before),
        [&out](std::string_view piece) { out.append(piece); }, qpdf_dl_specialized);
    // Without all of its filters the data that came are still encoded.
    if (result == StreamResult::kUnknownFilter) {
        out.resize(before);
    }
    return result;
}

StreamResult PipeRawData(QPDFObjectHandle stream, std::size_t limit, const Take& take) {
    return PipeData(stream, limit, take, qpdf_dl_none);
}

StreamResult PipeStreamData(QPDFObjectHandle stream, std::size_t limit, const Take& take) {
    return PipeData(stream, limit, take, qpdf_dl_specialized);
}

StreamResult PipeContent(QPDFObjectHandle stream, std::size_t limit, const Take& take) {
    if (!stream.isStream() || !IsPlainFlate(stream)) {
        std::string whole;
        const StreamResult result = AppendStreamData(stream, whole, limit);
        take(whole);
        return result;
    }
    BoundedSink sink(take, limit);
    try {
        Inflate(stream, sink);
    } catch (const std::exception&) {
        return sink.IsFull() ? StreamResult::kTooLarge : StreamResult::kDamaged;
    }
    return StreamResult::kOk;
}

}  // namespace VANTIX::PDF
