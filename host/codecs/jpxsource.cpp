// SPDX-License-Identifier: MIT
// JPEG 2000 (ISO/IEC 15444-1) as PDF embeds it (PDF Reference, 3.3.8).
#include <openjpeg.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/codecs/codecsupport.h"
#include "host/codecs/linesource.h"

namespace VANTIX::HOST {

namespace {

constexpr std::string_view kCodestreamStart = "\xFF\x4F\xFF\x51";

/// What OpenJPEG calls the channels of an image (ISO/IEC 15444-1, I.5.3.6).
constexpr OPJ_UINT16 kColorChannel = 0;
constexpr OPJ_UINT16 kOpacityChannel = 1;
constexpr OPJ_UINT16 kPremultipliedChannel = 2;

template <auto Free>
struct Freer {
    template <class T>
    void operator()(T* object) const {
        Free(object);
    }
};

// Codecs and streams are handles of one type.
using CodecPtr = std::unique_ptr<opj_codec_t, Freer<opj_destroy_codec>>;
using StreamPtr = std::unique_ptr<opj_stream_t, Freer<opj_stream_destroy>>;
using ImagePtr = std::unique_ptr<opj_image_t, Freer<opj_image_destroy>>;

/// Bytes in memory that OpenJPEG reads and seeks in.
struct Input {
    std::string_view bytes;
    std::size_t at = 0;

    static OPJ_SIZE_T Read(void* buffer, OPJ_SIZE_T size, void* self) {
        Input& in = *static_cast<Input*>(self);
        const std::string_view piece = in.bytes.substr(in.at, size);
        if (piece.empty()) {
            return static_cast<OPJ_SIZE_T>(-1);
        }
        std::memcpy(buffer, piece.data(), piece.size());
        in.at += piece.size();
        return piece.size();
    }

    static OPJ_OFF_T Skip(OPJ_OFF_T count, void* self) {
        Input& in = *static_cast<Input*>(self);
        const auto left = static_cast<OPJ_OFF_T>(in.bytes.size() - in.at);
        const OPJ_OFF_T skipped = std::clamp<OPJ_OFF_T>(count, 0, left);
        in.at += static_cast<std::size_t>(skipped);
        return skipped;
    }

    static OPJ_BOOL Seek(OPJ_OFF_T to, void* self) {
        Input& in = *static_cast<Input*>(self);
        if (to < 0 || static_cast<std::size_t>(to) > in.bytes.size()) {
            return OPJ_FALSE;
        }
        in.at = static_cast<std::size_t>(to);
        return OPJ_TRUE;
    }
};

/// Keeps the first complaint, which is the cause of those behind it.
void KeepMessage(const char* text, void* kept) {
    std::string& message = *static_cast<std::string*>(kept);
    if (message.empty()) {
        message = text;
        while (!message.empty() && (message.back() == '\n' || message.back() == ' ')) {
            message.pop_back();
        }
    }
}

/// One component of the decoded image as samples of the format's size and depth.
struct Plane {
    const OPJ_INT32* samples = nullptr;
    std::size_t width = 0;
    std::size_t height = 0;
    std::int32_t offset = 0;  ///< of signed samples
    std::int32_t most = 0;    ///< the greatest sample
};

Plane PlaneOf(const opj_image_comp_t& component) {
    const OPJ_UINT32 bits = std::min<OPJ_UINT32>(component.prec, 30);
    return {component.data, component.w, component.h,
            component.sgnd != 0 ? std::int32_t{1} << (bits - 1) : 0,
            static_cast<std::int32_t>((std::uint32_t{1} << bits) - 1)};
}

/// Lines of a decoded image, which is held as a whole: four bytes a sample, and as much again while
/// a tile of it is decoded.
class JpxSource final : public LineSource {
public:
    JpxSource(ImagePtr image, const std::vector<std::uint32_t>& order, const ImageFormat& format,
              bool isYcc, std::string error)
        : LineSource(format),
          mImage(std::move(image)),
          mIsYcc(isYcc),
          mValues(static_cast<std::size_t>(format.width) * order.size()),
          mLine(format.LineBytes()) {
        mError = std::move(error);
        for (const std::uint32_t component : order) {
            mPlanes.push_back(PlaneOf(mImage->comps[component]));
        }
    }

    const std::uint8_t* NextLine() override {
        if (mY >= mFormat.height) {
            return nullptr;
        }
        for (std::size_t i = 0; i < mPlanes.size(); ++i) {
            Scale(mPlanes[i], mValues.data() + i);
        }
        if (mIsYcc) {
            TurnToRgb();
        }
        Pack();
        ++mY;
        return mLine.data();
    }

    void Rewind() override { mY = 0; }

private:
    /// Enlarges a subsampled line and brings it to the depth of the format.
    void Scale(const Plane& plane, std::int32_t* out) const {
        const auto width = static_cast<std::size_t>(mFormat.width);
        const std::size_t y =
            static_cast<std::size_t>(mY) * plane.height / static_cast<std::size_t>(mFormat.height);
        const OPJ_INT32* line = plane.samples + y * plane.width;
        const auto top = (std::int64_t{1} << mFormat.bits) - 1;
        const std::int64_t most = plane.most;
        for (std::size_t x = 0; x < width; ++x, out += mPlanes.size()) {
            const OPJ_INT32 sample = line[plane.width == width ? x : x * plane.width / width];
            const std::int64_t value =
                std::clamp<std::int64_t>(std::int64_t{sample} + plane.offset, 0, most);
            *out = static_cast<std::int32_t>(most == top ? value : (value * top + most / 2) / most);
        }
    }

    /// From luminance and chrominances (ITU-R BT.601).
    void TurnToRgb() {
        const auto top = static_cast<float>((1 << mFormat.bits) - 1);
        const auto middle = static_cast<float>(1 << (mFormat.bits - 1));
        const auto fit = [top](float value) {
            return static_cast<std::int32_t>(std::clamp(value + 0.5F, 0.0F, top));
        };
        for (auto value = mValues.begin(); value < mValues.end();
             value += static_cast<std::ptrdiff_t>(mPlanes.size())) {
            const auto y = static_cast<float>(value[0]);
            const float cb = static_cast<float>(value[1]) - middle;
            const float cr = static_cast<float>(value[2]) - middle;
            value[0] = fit(y + 1.402F * cr);
            value[1] = fit(y - 0.344136F * cb - 0.714136F * cr);
            value[2] = fit(y + 1.772F * cb);
        }
    }

    void Pack() {
        if (mFormat.bits == 16) {
            for (std::size_t i = 0; i < mValues.size(); ++i) {
                mLine[2 * i] = static_cast<std::uint8_t>(mValues[i] >> 8);
                mLine[2 * i + 1] = static_cast<std::uint8_t>(mValues[i]);
            }
            return;
        }
        std::fill(mLine.begin(), mLine.end(), std::uint8_t{0});
        const auto bits = static_cast<std::size_t>(mFormat.bits);
        for (std::size_t i = 0; i < mValues.size(); ++i) {
            const std::size_t shift = 8 - bits - i * bits % 8;
            mLine[i * bits / 8] |= static_cast<std::uint8_t>(mValues[i] << shift);
        }
    }

    ImagePtr mImage;
    std::vector<Plane> mPlanes;
    bool mIsYcc;
    std::vector<std::int32_t> mValues;
    std::vector<std::uint8_t> mLine;
    std::int32_t mY = 0;
};

FourCC FamilyOf(OPJ_COLOR_SPACE space) {
    switch (space) {
        case OPJ_CLRSPC_GRAY:
            return "gray"_cc;
        case OPJ_CLRSPC_SRGB:
        case OPJ_CLRSPC_SYCC:
        case OPJ_CLRSPC_EYCC:
            return "rgb "_cc;
        case OPJ_CLRSPC_CMYK:
            return "cmyk"_cc;
        default:
            return 0;
    }
}

/// Whether the image that its header announces can be decoded into memory.
bool IsDecodable(const opj_image_t& image, std::string& error) {
    std::uint64_t samples = 0;
    if (image.numcomps < 1 || image.numcomps > static_cast<OPJ_UINT32>(kMostComponents)) {
        error = "JPX data of " + std::to_string(image.numcomps) + " components";
        return false;
    }
    for (std::uint32_t i = 0; i < image.numcomps; ++i) {
        const opj_image_comp_t& component = image.comps[i];
        if (component.w == 0 || component.h == 0 || component.prec < 1 || component.prec > 30) {
            error = "JPX data with an unusable component";
            return false;
        }
        samples += std::uint64_t{component.w} * component.h;
    }
    if (samples > kMostHeldSamples) {
        error = "JPX data of " + std::to_string(samples) + " samples are too large";
        return false;
    }
    return true;
}

/// Decodes as much as there is; null, with the reason, when there is nothing.
ImagePtr Decode(std::string_view bytes, std::string& error) {
    Input input{bytes};
    const bool isCodestream = bytes.substr(0, kCodestreamStart.size()) == kCodestreamStart;
    const CodecPtr codec(opj_create_decompress(isCodestream ? OPJ_CODEC_J2K : OPJ_CODEC_JP2));
    const StreamPtr stream(opj_stream_default_create(OPJ_TRUE));
    if (!codec || !stream) {
        error = "no memory for JPX data";
        return nullptr;
    }
    opj_stream_set_user_data(stream.get(), &input, nullptr);
    opj_stream_set_user_data_length(stream.get(), bytes.size());
    opj_stream_set_read_function(stream.get(), Input::Read);
    opj_stream_set_skip_function(stream.get(), Input::Skip);
    opj_stream_set_seek_function(stream.get(), Input::Seek);

    std::string complaint;
    opj_set_error_handler(codec.get(), KeepMessage, &complaint);
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    opj_image_t* header = nullptr;
    const bool isOpen = opj_setup_decoder(codec.get(), &parameters) != OPJ_FALSE &&
                        opj_decoder_set_strict_mode(codec.get(), OPJ_FALSE) != OPJ_FALSE &&
                        opj_read_header(stream.get(), codec.get(), &header) != OPJ_FALSE;
    ImagePtr image(header);
    if (!isOpen || !image) {
        error = "JPX data: " + (complaint.empty() ? "no header" : complaint);
        return nullptr;
    }
    if (!IsDecodable(*image, error)) {
        return nullptr;
    }
    const bool isDecoded = opj_decode(codec.get(), stream.get(), image.get()) != OPJ_FALSE;
    if (!isDecoded || !complaint.empty()) {
        error = "JPX data: " + (complaint.empty() ? "damaged" : complaint);
    }
    const bool hasSamples =
        image->numcomps > 0 && std::all_of(image->comps, image->comps + image->numcomps,
                                           [](const auto& one) { return one.data != nullptr; });
    return hasSamples ? std::move(image) : nullptr;
}

/// The components in the order in which they are served: colours, then opacity.
std::vector<std::uint32_t> Order(const opj_image_t& image, JpxInfo& info) {
    std::vector<std::uint32_t> order;
    for (std::uint32_t i = 0; i < image.numcomps; ++i) {
        if (image.comps[i].alpha == kColorChannel) {
            order.push_back(i);
        }
    }
    info.colors = static_cast<std::int32_t>(order.size());
    for (std::uint32_t i = 0; i < image.numcomps && !info.hasAlpha && !order.empty(); ++i) {
        const OPJ_UINT16 channel = image.comps[i].alpha;
        if (channel == kOpacityChannel || channel == kPremultipliedChannel) {
            info.hasAlpha = true;
            info.isPremultiplied = channel == kPremultipliedChannel;
            order.push_back(i);
        }
    }
    return order;
}

ImageFormat FormatOf(const opj_image_t& image, const std::vector<std::uint32_t>& order) {
    ImageFormat format{0, 0, static_cast<std::int32_t>(order.size()), 1};
    for (const std::uint32_t i : order) {
        const opj_image_comp_t& component = image.comps[i];
        format.width = std::max(format.width, static_cast<std::int32_t>(component.w));
        format.height = std::max(format.height, static_cast<std::int32_t>(component.h));
        format.bits = std::max(format.bits, static_cast<std::int32_t>(component.prec));
    }
    static constexpr std::array<std::int32_t, 3> kSmallDepths{1, 2, 4};
    const bool isSmall = order.size() == 1 && std::find(kSmallDepths.begin(), kSmallDepths.end(),
                                                        format.bits) != kSmallDepths.end();
    if (!isSmall) {
        format.bits = format.bits <= 8 ? 8 : 16;
    }
    return format;
}

}  // namespace

LineSourcePtr MakeJpxSource(const CodedData& data, JpxInfo& info, std::string& error) {
    info = {};
    if (!data) {
        error = "no data";
        return nullptr;
    }
    ImagePtr image = Decode(data->Bytes(), error);
    if (!image) {
        return nullptr;
    }
    info.family = FamilyOf(image->color_space);
    if (image->icc_profile_buf != nullptr && image->icc_profile_len > 0) {
        info.profile.assign(image->icc_profile_buf,
                            image->icc_profile_buf + image->icc_profile_len);
    }
    const std::vector<std::uint32_t> order = Order(*image, info);
    const ImageFormat format = FormatOf(*image, order);
    if (!IsServable(format, error)) {
        return nullptr;
    }
    const bool isYcc = info.colors >= 3 && (image->color_space == OPJ_CLRSPC_SYCC ||
                                            image->color_space == OPJ_CLRSPC_EYCC);
    return std::make_unique<JpxSource>(std::move(image), order, format, isYcc,
                                       std::exchange(error, {}));
}

}  // namespace VANTIX::HOST
