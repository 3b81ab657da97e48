// SPDX-License-Identifier: MIT
#include "support/imageencoders.h"

#include <openjpeg.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

// After <cstdio>, which it needs.
#include <jpeglib.h>

namespace VANTIX::TEST {

namespace {

/// Bits behind one another, most significant first.
class BitWriter {
public:
    void Put(unsigned value, unsigned count) {
        for (unsigned i = count; i-- > 0;) {
            if (mUsed % 8 == 0) {
                mBytes.push_back('\0');
            }
            const unsigned bit = (value >> i) & 1U;
            mBytes.back() = static_cast<char>(static_cast<unsigned char>(mBytes.back()) |
                                              (bit << (7 - mUsed % 8)));
            ++mUsed;
        }
    }

    void Align() { mUsed = (mUsed + 7) / 8 * 8; }

    std::string Take() { return std::move(mBytes); }

private:
    std::string mBytes;
    std::size_t mUsed = 0;
};

std::uint8_t Paeth(int left, int up, int corner) {
    const int guess = left + up - corner;
    const int toLeft = std::abs(guess - left);
    const int toUp = std::abs(guess - up);
    const int toCorner = std::abs(guess - corner);
    const bool isLeft = toLeft <= toUp && toLeft <= toCorner;
    return static_cast<std::uint8_t>(isLeft ? left : toUp <= toCorner ? up : corner);
}

}  // namespace

Samples Ramps(std::size_t width, std::size_t height, std::size_t components, unsigned bits) {
    Samples samples{width, height, components, bits, {}};
    const auto right = static_cast<double>(width - 1);
    const auto bottom = static_cast<double>(height - 1);
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const double across = static_cast<double>(x) / right;
            const double down = static_cast<double>(y) / bottom;
            const std::array<double, 4> shares{across, down, 1 - across, (across + down) / 4};
            for (std::size_t c = 0; c < components; ++c) {
                samples.values.push_back(
                    static_cast<std::uint16_t>(std::lround(shares[c] * samples.Greatest())));
            }
        }
    }
    return samples;
}

Samples LineArt() {
    static constexpr std::array<std::string_view, 9> kRows{
        "...............", ".#####.#.#.####", ".#...#.#.#.#..#",
        ".#...#...#....#", ".#####.......#.", "..........###..",
        "###############", "#..##......##.#", "..#########...."};
    Samples samples{kRows[0].size(), kRows.size(), 1, 1, {}};
    for (const std::string_view row : kRows) {
        for (const char c : row) {
            samples.values.push_back(c == '#' ? 0 : 1);
        }
    }
    return samples;
}

std::string Packed(const Samples& samples) {
    BitWriter bits;
    for (std::size_t i = 0; i < samples.values.size(); ++i) {
        if (i % samples.RowValues() == 0) {
            bits.Align();
        }
        bits.Put(samples.values[i], samples.bits);
    }
    return bits.Take();
}

std::string Hex(std::string_view bytes) {
    static constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += {kDigits[byte / 16U], kDigits[byte % 16U]};
    }
    return text + ">";
}

std::string Deflated(std::string_view bytes) {
    uLongf size = compressBound(bytes.size());
    std::string out(size, '\0');
    compress(reinterpret_cast<Bytef*>(out.data()), &size,
             reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
    out.resize(size);
    return out;
}

std::string RunLengths(std::string_view bytes) {
    std::string out;
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t end = std::min(bytes.find_first_not_of(bytes[i], i), bytes.size());
        const std::size_t run = std::min<std::size_t>(end - i, 128);
        const std::size_t length = run > 1 ? run : 1;
        out += static_cast<char>(run > 1 ? 257 - run : 0);
        out += bytes[i];
        i += length;
    }
    return out + static_cast<char>(128);
}

std::string Lzw(std::string_view bytes, bool early) {
    constexpr unsigned kClear = 256;
    constexpr unsigned kEnd = 257;
    constexpr unsigned kFull = 4096;
    BitWriter out;
    std::map<std::string, unsigned> table;
    unsigned next = kFull;
    unsigned width = 9;
    std::string word;
    const auto put = [&] {
        out.Put(word.size() == 1 ? static_cast<unsigned char>(word[0]) : table[word], width);
        ++next;
        const unsigned reach = next + (early ? 1 : 0) - 1;
        width = reach >= 2048 ? 12 : reach >= 1024 ? 11 : reach >= 512 ? 10 : 9;
    };
    for (const char c : bytes) {
        if (next >= kFull - 2) {
            if (!word.empty()) {
                put();
            }
            out.Put(kClear, width);
            table.clear();
            next = kEnd + 1;
            width = 9;
            word = c;
            continue;
        }
        if (table.contains(word + c)) {
            word += c;
            continue;
        }
        const unsigned code = next;
        put();
        table[word + c] = code;
        word = c;
    }
    put();
    out.Put(kEnd, width);
    return out.Take();
}

std::string PngPredicted(const Samples& samples) {
    const std::string bytes = Packed(samples);
    const std::size_t row = bytes.size() / samples.height;
    const std::size_t pixel = std::max<std::size_t>(1, samples.components * samples.bits / 8);
    std::string out;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t filter = i / row % 5;
        if (i % row == 0) {
            out += static_cast<char>(filter);
        }
        const auto at = [&](bool exists, std::size_t back) {
            return exists ? static_cast<unsigned char>(bytes[i - back]) : 0;
        };
        const bool hasLeft = i % row >= pixel;
        const int left = at(hasLeft, pixel);
        const int up = at(i >= row, row);
        const int corner = at(hasLeft && i >= row, row + pixel);
        const std::array<int, 5> guesses{0, left, up, (left + up) / 2, Paeth(left, up, corner)};
        out += static_cast<char>(static_cast<unsigned char>(bytes[i]) - guesses[filter]);
    }
    return out;
}

std::string TiffPredicted(const Samples& samples) {
    Samples differences = samples;
    for (std::size_t i = 0; i < samples.values.size(); ++i) {
        if (i % samples.RowValues() >= samples.components) {
            const int difference = samples.values[i] - samples.values[i - samples.components];
            differences.values[i] = static_cast<std::uint16_t>(difference & samples.Greatest());
        }
    }
    return Packed(differences);
}

std::string Jpeg(const Samples& samples, JpegModel model) {
    struct Model {
        J_COLOR_SPACE in, out;
    };

    static const std::map<JpegModel, Model> kModels{
        {JpegModel::kGray, {JCS_GRAYSCALE, JCS_GRAYSCALE}},
        {JpegModel::kYcc, {JCS_RGB, JCS_YCbCr}},
        {JpegModel::kRgb, {JCS_RGB, JCS_RGB}},
        {JpegModel::kCmyk, {JCS_CMYK, JCS_CMYK}},
        {JpegModel::kYcck, {JCS_CMYK, JCS_YCCK}}};
    jpeg_compress_struct file{};
    jpeg_error_mgr errors{};
    file.err = jpeg_std_error(&errors);
    jpeg_create_compress(&file);
    unsigned char* memory = nullptr;
    uLong bytes = 0;
    jpeg_mem_dest(&file, &memory, &bytes);
    file.image_width = static_cast<JDIMENSION>(samples.width);
    file.image_height = static_cast<JDIMENSION>(samples.height);
    file.input_components = static_cast<int>(samples.components);
    file.in_color_space = kModels.at(model).in;
    jpeg_set_defaults(&file);
    jpeg_set_colorspace(&file, kModels.at(model).out);
    jpeg_set_quality(&file, 100, TRUE);
    for (int i = 0; i < file.num_components; ++i) {
        file.comp_info[i].h_samp_factor = 1;
        file.comp_info[i].v_samp_factor = 1;
    }
    jpeg_start_compress(&file, TRUE);
    std::string lines = Packed(samples);
    for (std::size_t y = 0; y < samples.height; ++y) {
        auto* line = reinterpret_cast<JSAMPROW>(lines.data() + y * samples.RowValues());
        jpeg_write_scanlines(&file, &line, 1);
    }
    jpeg_finish_compress(&file);
    std::string result(reinterpret_cast<const char*>(memory), bytes);
    jpeg_destroy_compress(&file);
    std::free(memory);
    return result;
}

namespace {

/// A file in memory that the JPEG 2000 library writes.
struct MemoryFile {
    std::string bytes;
    std::size_t position = 0;

    static OPJ_SIZE_T Write(void* data, OPJ_SIZE_T size, void* user) {
        auto& file = *static_cast<MemoryFile*>(user);
        file.bytes.resize(std::max(file.bytes.size(), file.position + size));
        std::memcpy(file.bytes.data() + file.position, data, size);
        file.position += size;
        return size;
    }

    static OPJ_BOOL Seek(OPJ_OFF_T position, void* user) {
        static_cast<MemoryFile*>(user)->position = static_cast<std::size_t>(position);
        return OPJ_TRUE;
    }

    static OPJ_OFF_T Skip(OPJ_OFF_T count, void* user) {
        static_cast<MemoryFile*>(user)->position += static_cast<std::size_t>(count);
        return count;
    }
};

COLOR_SPACE SpaceOf(const Samples& samples, JpxSpace space) {
    switch (space) {
        case JpxSpace::kCmyk:
            return OPJ_CLRSPC_CMYK;
        case JpxSpace::kYcc:
            return OPJ_CLRSPC_SYCC;
        default:
            return samples.components < 3 ? OPJ_CLRSPC_GRAY : OPJ_CLRSPC_SRGB;
    }
}

opj_image_t* MakeJpxImage(const Samples& samples, const JpxOptions& options) {
    std::vector<opj_image_cmptparm_t> parameters(samples.components);
    for (std::size_t c = 0; c < parameters.size(); ++c) {
        opj_image_cmptparm_t& one = parameters[c];
        const std::size_t step = c == 1 || c == 2 ? options.chromaStep : 1;
        one = {};
        one.dx = one.dy = static_cast<OPJ_UINT32>(step);
        one.w = static_cast<OPJ_UINT32>((samples.width + step - 1) / step);
        one.h = static_cast<OPJ_UINT32>((samples.height + step - 1) / step);
        one.prec = samples.bits;
        one.sgnd = options.isSigned ? 1 : 0;
    }
    opj_image_t* image = opj_image_create(static_cast<OPJ_UINT32>(samples.components),
                                          parameters.data(), SpaceOf(samples, options.space));
    image->x1 = static_cast<OPJ_UINT32>(samples.width);
    image->y1 = static_cast<OPJ_UINT32>(samples.height);
    const int middle = options.isSigned ? 1 << (samples.bits - 1) : 0;
    for (std::size_t c = 0; c < parameters.size(); ++c) {
        const opj_image_comp_t& one = image->comps[c];
        for (std::size_t i = 0; i < std::size_t{one.w} * one.h; ++i) {
            const std::size_t x = i % one.w * one.dx;
            const std::size_t y = i / one.w * one.dy;
            one.data[i] =
                samples.values[y * samples.RowValues() + x * samples.components + c] - middle;
        }
    }
    if (options.space != JpxSpace::kCmyk && samples.components % 2 == 0) {
        image->comps[samples.components - 1].alpha = 1;
    }
    return image;
}

}  // namespace

std::string Jpx(const Samples& samples, const JpxOptions& options) {
    opj_image_t* image = MakeJpxImage(samples, options);
    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    parameters.numresolution = 2;
    parameters.tcp_numlayers = 1;
    parameters.cp_disto_alloc = 1;
    MemoryFile file;
    opj_codec_t* codec = opj_create_compress(options.isCodestream ? OPJ_CODEC_J2K : OPJ_CODEC_JP2);
    opj_stream_t* stream = opj_stream_default_create(OPJ_FALSE);
    opj_stream_set_user_data(stream, &file, nullptr);
    opj_stream_set_write_function(stream, MemoryFile::Write);
    opj_stream_set_seek_function(stream, MemoryFile::Seek);
    opj_stream_set_skip_function(stream, MemoryFile::Skip);
    const bool done = opj_setup_encoder(codec, &parameters, image) != 0 &&
                      opj_start_compress(codec, image, stream) != 0 &&
                      opj_encode(codec, stream) != 0 && opj_end_compress(codec, stream) != 0;
    opj_stream_destroy(stream);
    opj_destroy_codec(codec);
    opj_image_destroy(image);
    return done ? file.bytes : std::string();
}

}  // namespace VANTIX::TEST
