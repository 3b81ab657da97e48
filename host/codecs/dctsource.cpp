// SPDX-License-Identifier: MIT
#include <csetjmp>
#include <cstdio>

// libjpeg's header takes FILE and size_t for granted.
#include <jerror.h>
#include <jpeglib.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/codecs/codecsupport.h"
#include "host/codecs/linesource.h"

namespace VANTIX::HOST {

namespace {

/// Scans of a progressive image: usual progressions have ten, and each one may cost as much time as
/// the whole image, however few its data are.
constexpr int kMostScans = 100;

/// What the library may allocate: the coefficients of several scans have two bytes each.
constexpr std::int32_t kMostMemory = 1'000'000'000;

constexpr std::string_view kStartOfImage = "\xFF\xD8\xFF";

/// Decodes a JPEG image in memory with libjpeg, whose errors jump back into Guarded. No object with
/// a destructor lives in the functions that such a jump leaves.
class DctSource final : public LineSource {
public:
    DctSource(CodedData data, std::int32_t colorTransform)
        : mPieces(std::move(data)), mColorTransform(colorTransform) {
        mDecoder.err = jpeg_std_error(&mErrors);
        mErrors.error_exit = OnError;
        mErrors.emit_message = OnMessage;
        mDecoder.client_data = this;
        mOpen = Guarded([](DctSource& self) { self.Create(); }) &&
                Guarded([](DctSource& self) { self.ReadHeader(); });
    }

    ~DctSource() override { jpeg_destroy_decompress(&mDecoder); }

    DctSource(const DctSource&) = delete;
    DctSource& operator=(const DctSource&) = delete;
    DctSource(DctSource&&) = delete;
    DctSource& operator=(DctSource&&) = delete;

    /// Whether there are a header and an image that can be served; else `error` tells why not.
    bool IsOpen(std::string& error);

    const std::uint8_t* NextLine() override;
    void Rewind() override;

private:
    /// Runs a piece of work; false when libjpeg jumped out of it.
    template <typename Work>
    bool Guarded(Work work) {
        if (setjmp(mJump) != 0) {
            mError = std::string("DCT data: ") + mMessage.data();
            return false;
        }
        work(*this);
        return true;
    }

    [[noreturn]] static void OnError(j_common_ptr decoder);
    static void OnMessage(j_common_ptr decoder, int level);
    static boolean OnEmpty(j_decompress_ptr decoder);
    static void SetInput(jpeg_source_mgr& source, std::string_view bytes);
    static void Skip(j_decompress_ptr decoder, std::size_t count);

    void Create();
    void ReadHeader();
    void ChooseColors();
    [[nodiscard]] bool HasRgbNames() const;
    bool Start();
    void ReadScans();
    void NoteWarnings();

    CodedPieces mPieces;
    std::int32_t mColorTransform;
    std::vector<std::uint8_t> mLine;
    jpeg_decompress_struct mDecoder{};
    jpeg_error_mgr mErrors{};
    jpeg_source_mgr mBytes{};
    std::jmp_buf mJump{};
    std::array<char, JMSG_LENGTH_MAX> mMessage{};
    std::int32_t mLines = 0;
    std::int32_t mDecodable = JPEG_MAX_DIMENSION;  ///< lines that the data reach to
    bool mOpen = false;
    bool mStarted = false;
};

void DctSource::OnError(j_common_ptr decoder) {
    DctSource& self = *static_cast<DctSource*>(decoder->client_data);
    decoder->err->format_message(decoder, self.mMessage.data());
    std::longjmp(self.mJump, 1);
}

void DctSource::OnMessage(j_common_ptr decoder, int level) {
    if (level >= 0) {
        return;
    }
    DctSource& self = *static_cast<DctSource*>(decoder->client_data);
    if (decoder->err->num_warnings++ == 0) {
        decoder->err->format_message(decoder, self.mMessage.data());
    }
    // Without data the rest of a first scan is gray; later scans only refine what is there.
    const jpeg_decompress_struct& state = self.mDecoder;
    if (decoder->err->msg_code == JWRN_HIT_MARKER && state.unread_marker == JPEG_EOI &&
        state.input_scan_number <= 1) {
        const auto lines =
            (state.input_iMCU_row + 1) * static_cast<JDIMENSION>(state.max_v_samp_factor) * DCTSIZE;
        self.mDecodable = std::min(self.mDecodable, static_cast<std::int32_t>(lines));
    }
}

/// Gives data without an end the marker of one.
boolean DctSource::OnEmpty(j_decompress_ptr decoder) {
    static constexpr std::string_view kEnd = "\xFF\xD9";
    const std::string_view piece = static_cast<DctSource*>(decoder->client_data)->mPieces.Next();
    SetInput(*decoder->src, piece.empty() ? kEnd : piece);
    return TRUE;
}

void DctSource::SetInput(jpeg_source_mgr& source, std::string_view bytes) {
    // Bytes of a text are read as what they are.
    source.next_input_byte = reinterpret_cast<const JOCTET*>(bytes.data());
    source.bytes_in_buffer = bytes.size();
}

void DctSource::Skip(j_decompress_ptr decoder, std::size_t count) {
    jpeg_source_mgr& bytes = *decoder->src;
    while (count > bytes.bytes_in_buffer) {
        count -= bytes.bytes_in_buffer;
        OnEmpty(decoder);
    }
    bytes.next_input_byte += count;
    bytes.bytes_in_buffer -= count;
}

void DctSource::Create() {
    jpeg_create_decompress(&mDecoder);
    mDecoder.mem->max_memory_to_use = kMostMemory;
    mBytes.init_source = [](j_decompress_ptr) {};
    mBytes.fill_input_buffer = OnEmpty;
    mBytes.skip_input_data = [](j_decompress_ptr decoder, auto count) {
        Skip(decoder, static_cast<std::size_t>(count));
    };
    mBytes.resync_to_restart = jpeg_resync_to_restart;
    mBytes.term_source = [](j_decompress_ptr) {};
    mDecoder.src = &mBytes;
}

/// Some data have a line end or the like before their first marker.
void DctSource::ReadHeader() {
    mPieces.Rewind();
    const std::string_view piece = mPieces.Next();
    SetInput(mBytes, piece.substr(std::min(piece.find(kStartOfImage), piece.size())));
    jpeg_read_header(&mDecoder, TRUE);
    ChooseColors();
    mFormat.width = static_cast<std::int32_t>(mDecoder.image_width);
    mFormat.height = static_cast<std::int32_t>(mDecoder.image_height);
    mFormat.components = mDecoder.num_components;
    mFormat.bits = 8;
}

bool DctSource::HasRgbNames() const {
    const jpeg_component_info* components = mDecoder.comp_info;
    return mDecoder.saw_JFIF_marker == 0 && components[0].component_id == 'R' &&
           components[1].component_id == 'G' && components[2].component_id == 'B';
}

/// Adobe's marker overrules the parameter of the filter, which overrules what is usual (PDF
/// Reference, 3.3.7).
void DctSource::ChooseColors() {
    const int components = mDecoder.num_components;
    if (components != 3 && components != 4) {
        return;
    }
    bool isTransformed = components == 3 && !HasRgbNames();
    if (mDecoder.saw_Adobe_marker != 0) {
        isTransformed = mDecoder.Adobe_transform != 0;
    } else if (mColorTransform >= 0) {
        isTransformed = mColorTransform != 0;
    }
    if (components == 3) {
        mDecoder.jpeg_color_space = isTransformed ? JCS_YCbCr : JCS_RGB;
        mDecoder.out_color_space = JCS_RGB;
    } else {
        mDecoder.jpeg_color_space = isTransformed ? JCS_YCCK : JCS_CMYK;
        mDecoder.out_color_space = JCS_CMYK;
    }
}

bool DctSource::IsOpen(std::string& error) {
    if (!mOpen) {
        error = mError;
        return false;
    }
    if (!IsServable(mFormat, error)) {
        return false;
    }
    const auto samples = static_cast<std::uint64_t>(mFormat.LineBytes()) *
                         static_cast<std::uint64_t>(mFormat.height);
    if (mFormat.components > 4) {
        error = "DCT data of " + std::to_string(mFormat.components) + " components";
        return false;
    }
    if (jpeg_has_multiple_scans(&mDecoder) != 0 && samples > kMostHeldSamples) {
        error = "a progressive image of " + std::to_string(samples) + " samples is too large";
        return false;
    }
    mLine.resize(mFormat.LineBytes());
    return true;
}

void DctSource::ReadScans() {
    while (jpeg_input_complete(&mDecoder) == 0 && mDecoder.input_scan_number <= kMostScans) {
        jpeg_consume_input(&mDecoder);
    }
}

/// Images of several scans are collected first. When one of them cannot be read, those before it
/// still make an image.
bool DctSource::Start() {
    mStarted = true;
    const bool isCollected = jpeg_has_multiple_scans(&mDecoder) != 0;
    mDecoder.buffered_image = isCollected ? TRUE : FALSE;
    if (!Guarded([](DctSource& self) { jpeg_start_decompress(&self.mDecoder); })) {
        return false;
    }
    if (!isCollected) {
        return true;
    }
    const bool isComplete =
        Guarded([](DctSource& self) { self.ReadScans(); }) && jpeg_input_complete(&mDecoder) != 0;
    if (!isComplete && mDecoder.input_scan_number <= 1) {
        return false;
    }
    return Guarded([](DctSource& self) {
        const int ready = jpeg_input_complete(&self.mDecoder) != 0 ? 0 : 1;
        jpeg_start_output(&self.mDecoder, self.mDecoder.input_scan_number - ready);
    });
}

void DctSource::NoteWarnings() {
    if (mErrors.num_warnings > 0 && mError.empty()) {
        mError = std::string("DCT data: ") + mMessage.data();
    }
}

const std::uint8_t* DctSource::NextLine() {
    if (mLines >= mFormat.height || !mOpen) {
        return nullptr;
    }
    mOpen = (mStarted || Start()) && Guarded([](DctSource& self) {
                JSAMPROW row = self.mLine.data();
                jpeg_read_scanlines(&self.mDecoder, &row, 1);
            });
    if (mOpen && mLines >= mDecodable) {
        mError = DescribeShortData("DCT", mLines, mFormat.height, mMessage.data());
        mOpen = false;
    }
    if (!mOpen) {
        return nullptr;
    }
    ++mLines;
    NoteWarnings();
    return mLine.data();
}

void DctSource::Rewind() {
    mLines = 0;
    mStarted = false;
    mDecodable = JPEG_MAX_DIMENSION;
    mError.clear();
    mOpen = Guarded([](DctSource& self) {
        jpeg_abort_decompress(&self.mDecoder);
        self.ReadHeader();
    });
}

}  // namespace

LineSourcePtr MakeDctSource(CodedData data, std::int32_t colorTransform, std::string& error) {
    if (!data) {
        error = "no data";
        return nullptr;
    }
    auto source = std::make_unique<DctSource>(std::move(data), colorTransform);
    return source->IsOpen(error) ? std::move(source) : nullptr;
}

}  // namespace VANTIX::HOST
