// SPDX-License-Identifier: MIT
#include "pdf/imagedata.h"

#include <algorithm>
#include <array>
#include <qpdf/Pipeline.hh>
#include <utility>
#include <vector>

#include "pdf/forms.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

struct Codec {
    std::string_view name;
    ImageCodec codec;
};

constexpr std::array<Codec, 5> kCodecs = {{
    {"FlateDecode", ImageCodec::kFlate},
    {"DCTDecode", ImageCodec::kDct},
    {"JPXDecode", ImageCodec::kJpx},
    {"CCITTFaxDecode", ImageCodec::kFax},
    {"JBIG2Decode", ImageCodec::kJbig2},
}};

constexpr std::array<std::pair<std::string_view, std::string_view>, 7> kShortNames = {{
    {"AHx", "ASCIIHexDecode"},
    {"A85", "ASCII85Decode"},
    {"LZW", "LZWDecode"},
    {"Fl", "FlateDecode"},
    {"RL", "RunLengthDecode"},
    {"CCF", "CCITTFaxDecode"},
    {"DCT", "DCTDecode"},
}};

// More filters than these are there to waste time.
constexpr std::size_t kMostFilters = 16;

std::string FullName(const std::string& name) {
    const auto* const found = std::find_if(kShortNames.begin(), kShortNames.end(),
                                           [&](const auto& pair) { return pair.first == name; });
    return found == kShortNames.end() ? name : std::string(found->second);
}

bool ReadFilters(const QPDFObjectHandle& dictionary, std::vector<ImageFilter>& filters) {
    QPDFObjectHandle names = Get(dictionary, "/Filter");
    QPDFObjectHandle parameters = Get(dictionary, "/DecodeParms");
    if (IsNull(names)) {
        return true;
    }
    const std::vector<QPDFObjectHandle> list =
        names.isArray() ? names.getArrayAsVector() : std::vector<QPDFObjectHandle>{names};
    if (list.size() > kMostFilters) {
        return false;
    }
    for (std::size_t i = 0; i < list.size(); ++i) {
        const auto index = static_cast<int>(i);
        const bool isListed = parameters.isArray() && index < parameters.getArrayNItems();
        const bool isAlone = parameters.isDictionary() && i == 0;
        const QPDFObjectHandle own = isListed
                                         ? parameters.getArrayItem(index)
                                         : (isAlone ? parameters : QPDFObjectHandle::newNull());
        const std::string name = FullName(NameOf(list[i]));
        // What is encrypted is read decrypted, whatever the filter.
        if (name != "Crypt") {
            filters.push_back({name, own});
        }
    }
    return true;
}

ImageCodec TakeCodec(std::vector<ImageFilter>& filters, QPDFObjectHandle& parameters) {
    if (filters.empty()) {
        return ImageCodec::kRaw;
    }
    const auto* const found = std::find_if(kCodecs.begin(), kCodecs.end(), [&](const Codec& codec) {
        return codec.name == filters.back().name;
    });
    if (found == kCodecs.end()) {
        return ImageCodec::kRaw;
    }
    parameters = filters.back().parameters;
    filters.pop_back();
    return found->codec;
}

HOST::PredictorParameters PredictorOf(const QPDFObjectHandle& parameters) {
    HOST::PredictorParameters predictor;
    predictor.predictor = IntegerOf(Get(parameters, "/Predictor")).value_or(1);
    predictor.colors = IntegerOf(Get(parameters, "/Colors")).value_or(1);
    predictor.bitsPerComponent = IntegerOf(Get(parameters, "/BitsPerComponent")).value_or(8);
    predictor.columns = IntegerOf(Get(parameters, "/Columns")).value_or(1);
    return predictor;
}

HOST::FaxParameters FaxOf(const QPDFObjectHandle& parameters) {
    HOST::FaxParameters fax;
    fax.k = IntegerOf(Get(parameters, "/K")).value_or(0);
    fax.columns = IntegerOf(Get(parameters, "/Columns")).value_or(fax.columns);
    fax.rows = IntegerOf(Get(parameters, "/Rows")).value_or(0);
    fax.endOfLine = BoolOf(Get(parameters, "/EndOfLine"), false);
    fax.encodedByteAlign = BoolOf(Get(parameters, "/EncodedByteAlign"), false);
    fax.endOfBlock = BoolOf(Get(parameters, "/EndOfBlock"), true);
    fax.blackIs1 = BoolOf(Get(parameters, "/BlackIs1"), false);
    return fax;
}

StreamResult PipeEncoded(const ImageObject& image, std::size_t limit, const Take& take) {
    if (!IsNull(image.stream)) {
        return PipeRawData(image.stream, limit, take);
    }
    take(image.inlineData.substr(0, limit));
    return StreamResult::kOk;
}

HOST::LineSourcePtr OpenJbig2(const CodedImage& coded, const HOST::ImageFormat& declared,
                              std::string& error) {
    const QPDFObjectHandle stream = Get(coded.parameters, "/JBIG2Globals");
    HOST::CodedData globals;
    if (!IsNull(stream)) {
        std::string data;
        AppendStreamData(stream, data, kLargestContent);
        globals = std::make_shared<const HOST::CodedBytes>(std::move(data));
    }
    return HOST::MakeJbig2Source(coded.data, globals, declared.width, declared.height, error);
}

}  // namespace

ImageObject ImageObject::FromStream(const QPDFObjectHandle& stream) {
    QPDFObjectHandle object = stream;
    return {object, object.getDict(), {}, "Image " + object.getObjGen().unparse(' ')};
}

struct ImageDataReader::Scratch {
    Scratch() {
        qpdf.emptyPDF();
        qpdf.setSuppressWarnings(true);
        stream = QPDFObjectHandle::newStream(&qpdf);
    }

    QPDF qpdf;
    QPDFObjectHandle stream;
};

ImageDataReader::ImageDataReader() = default;

ImageDataReader::~ImageDataReader() = default;

StreamResult ImageDataReader::PipeFiltered(const ImageObject& image,
                                           const std::vector<ImageFilter>& filters,
                                           std::size_t limit, const Take& take) {
    if (!mScratch) {
        mScratch = std::make_unique<Scratch>();
    }
    QPDFObjectHandle names = QPDFObjectHandle::newArray();
    QPDFObjectHandle parameters = QPDFObjectHandle::newArray();
    for (const ImageFilter& filter : filters) {
        names.appendItem(QPDFObjectHandle::newName("/" + filter.name));
        // What belongs to the document cannot stand in another.
        QPDFObjectHandle own = filter.parameters;
        parameters.appendItem(own.isDictionary() ? QPDFObjectHandle::parse(own.unparseResolved())
                                                 : QPDFObjectHandle::newNull());
    }
    const auto provide = [&image](Pipeline* filtered, bool, bool) {
        const StreamResult read =
            PipeEncoded(image, kLargestContent, [filtered](std::string_view piece) {
                filtered->write(reinterpret_cast<const unsigned char*>(piece.data()), piece.size());
            });
        filtered->finish();
        return read == StreamResult::kOk;
    };
    mScratch->stream.replaceStreamData(provide, names, parameters);
    const StreamResult result = PipeStreamData(mScratch->stream, limit, take);
    mScratch->stream.replaceStreamData(std::string(), names, parameters);
    return result;
}

bool ImageDataReader::Read(const ImageObject& image, std::size_t limit, CodedImage& coded,
                           std::string& error) {
    std::vector<ImageFilter> filters;
    if (!ReadFilters(image.dictionary, filters)) {
        error = "it has too many filters";
        return false;
    }
    coded.codec = TakeCodec(filters, coded.parameters);
    const std::size_t most = coded.codec == ImageCodec::kRaw ? limit : kLargestContent;
    HOST::CodedDataWriter writer;
    const auto keep = [&writer](std::string_view piece) { writer.Append(piece); };
    const StreamResult result =
        filters.empty() ? PipeEncoded(image, most, keep) : PipeFiltered(image, filters, most, keep);
    if (result == StreamResult::kUnknownFilter) {
        error = "it is encoded in an unknown way";
        return false;
    }
    if (result == StreamResult::kDamaged) {
        error = "its data are damaged";
    }
    coded.data = writer.Finish();
    if (!coded.data) {
        error = "there is no room for its data";
    }
    return coded.data != nullptr;
}

HOST::LineSourcePtr OpenLines(const CodedImage& coded, const HOST::ImageFormat& declared,
                              HOST::JpxInfo& info, std::string& error) {
    switch (coded.codec) {
        case ImageCodec::kRaw:
            return HOST::MakeRawSource(coded.data, declared);
        case ImageCodec::kFlate:
            return HOST::MakeFlateSource(coded.data, declared, PredictorOf(coded.parameters),
                                         error);
        case ImageCodec::kDct:
            return HOST::MakeDctSource(
                coded.data, IntegerOf(Get(coded.parameters, "/ColorTransform")).value_or(-1),
                error);
        case ImageCodec::kJpx:
            return HOST::MakeJpxSource(coded.data, info, error);
        case ImageCodec::kFax:
            return HOST::MakeFaxSource(coded.data, FaxOf(coded.parameters), declared.height, error);
        case ImageCodec::kJbig2:
            return OpenJbig2(coded, declared, error);
    }
    return nullptr;
}

}  // namespace VANTIX::PDF
