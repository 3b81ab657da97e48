// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "pdf/contentinterpreter.h"
#include "pdf/imagecolors.h"
#include "pdf/images.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

// Interpreters slow down, or give up, with clips of more.
constexpr std::size_t kMostBoxesOfClip = 4000;

// From here on a band is drawn: its last line may well have had as many boxes again.
constexpr std::size_t kBoxesOfBand = kMostBoxesOfClip / 2;

constexpr std::array<std::pair<const char*, const char*>, 9> kInlineKeys = {{
    {"/BPC", "/BitsPerComponent"},
    {"/CS", "/ColorSpace"},
    {"/D", "/Decode"},
    {"/DP", "/DecodeParms"},
    {"/F", "/Filter"},
    {"/H", "/Height"},
    {"/IM", "/ImageMask"},
    {"/L", "/Length"},
    {"/W", "/Width"},
}};

QPDFObjectHandle InlineDictionary(std::string_view text) {
    QPDFObjectHandle dictionary = QPDFObjectHandle::parse("<<" + std::string(text) + ">>");
    for (const auto& [shortKey, key] : kInlineKeys) {
        if (dictionary.hasKey(shortKey) && !dictionary.hasKey(key)) {
            dictionary.replaceKey(key, dictionary.getKey(shortKey));
        }
    }
    return dictionary;
}

// Bytes of an inline image without filters; 0 when only the data themselves can tell.
std::size_t InlineSize(const QPDFObjectHandle& dictionary, Resources& resources) {
    const auto number = [&](const char* key, double fallback) {
        return NumberOf(Get(dictionary, key)).value_or(fallback);
    };
    double size = number("/Length", 0.0);
    const QPDFObjectHandle space = Get(dictionary, "/ColorSpace");
    const bool isStencil = BoolOf(Get(dictionary, "/ImageMask"), false);
    QPDFObjectHandle filter = Get(dictionary, "/Filter");
    const bool isPlain = filter.isNull() || (filter.isArray() && filter.getArrayNItems() == 0);
    if (size <= 0.0 && isPlain) {
        const ColorSpaceEntry* entry =
            isStencil || IsNull(space) ? nullptr : resources.FindColorSpace(space);
        const double bits = isStencil ? 1.0 : number("/BitsPerComponent", 8.0);
        const double components = isStencil ? 1.0 : (entry == nullptr ? 0.0 : entry->components);
        size = std::ceil(number("/Width", 0.0) * bits * components / 8.0) * number("/Height", 0.0);
    }
    const bool isSane = size > 0.0 && size <= std::numeric_limits<std::int32_t>::max();
    return isSane ? static_cast<std::size_t>(size) : 0;
}

// The palette of a stencil: one colour, for both values of a bit.
std::vector<std::uint8_t> PaletteOf(const float* values, std::int32_t count) {
    std::vector<std::uint8_t> palette;
    for (std::int32_t i = 0; i < 2 * count; ++i) {
        const float value = std::clamp(values[i % count], 0.0F, 1.0F);
        palette.push_back(static_cast<std::uint8_t>(std::lround(value * 255.0F)));
    }
    return palette;
}

Path PathOf(std::span<const PixelBox> boxes) {
    Path path;
    for (const PixelBox& box : boxes) {
        path.Rectangle(static_cast<float>(box.left), static_cast<float>(box.top),
                       static_cast<float>(box.right - box.left),
                       static_cast<float>(box.bottom - box.top));
    }
    return path;
}

std::size_t LineBytesOf(const HOST::RasterFormat& format) {
    return (static_cast<std::size_t>(format.width) * static_cast<std::size_t>(format.bits) + 7) / 8;
}

}  // namespace

ImageContext ContentInterpreter::ContextOfImages() {
    return {mContext.colorSpaces, mContext.imageData, mContext.reporter, State().intent,
            mContext.graysAsPalettes};
}

void ContentInterpreter::InlineImage(Numbers) {
    ImageObject object;
    object.label = "An inline image";
    std::size_t size = 0;
    try {
        object.dictionary = InlineDictionary(mFrame.parser->OperandText());
        size = InlineSize(object.dictionary, *mFrame.resources);
    } catch (const std::exception&) {
        object.dictionary = QPDFObjectHandle::newDictionary();
    }
    object.stream = QPDFObjectHandle::newNull();
    object.inlineData = mFrame.parser->TakeInlineImage(size);
    if (!IsHidden() && !Top().isCollapsed) {
        PaintImage(object);
    }
}

void ContentInterpreter::PaintImage(const ImageObject& object) {
    if (State().fillAlpha <= 0.0F) {
        return;
    }
    PreparePaint();
    try {
        const auto image = Image::Open(object, *mFrame.resources, ContextOfImages());
        if (image && image->IsStencil()) {
            PaintStencil(*image);
        } else if (image && MayColor()) {
            PaintColors(*image);
        }
    } catch (const std::exception& failure) {
        mContext.reporter.Warn("image", object.label + ": " + failure.what());
    }
}

void ContentInterpreter::PaintColors(Image& image) {
    mContext.colorSpaces.UseWithAlternates(image.Space());
    std::optional<ImageMask> mask = image.Mask();
    const MaskKind kind = mask ? Survey(*mask) : MaskKind::kOpaque;
    if (kind == MaskKind::kClear) {
        return;
    }
    if (mask && (kind == MaskKind::kSoft || mContext.keepsAlpha)) {
        PaintSoft(image, std::move(*mask), kind == MaskKind::kOpaque);
    } else if (kind == MaskKind::kOpaque) {
        PaintRaster(image.Planes(false), image.Label());
    } else if (image.Width() == 1 && image.Height() == 1) {
        PaintPixel(image.Planes(true), std::move(*mask), image.Label());
    } else {
        PaintClipped(image.Planes(false), *mask, image.Label());
    }
}

void ContentInterpreter::PaintRaster(PlanarImage image, const std::string& label) {
    if (!image.source) {
        return;
    }
    DrawRaster(std::move(image).ToRaster(), label);
}

void ContentInterpreter::DrawRaster(const HOST::RasterPtr& raster, const std::string& label) {
    if (!raster) {
        mContext.reporter.Warn("image", label + ": it is left out: it is too large");
        return;
    }
    // Plates are flattened under the opacity of the whole.
    const GRAPHICS::IChannelDesc* first =
        raster->GetExtraCount() > 0 ? raster->GetExtra(0) : nullptr;
    if (first != nullptr && first->GetType() == "SPOT"_cc) {
        HOST::AddAlpha(*raster, 8, std::make_unique<OpaquePlane>(raster->GetWidth()), true);
    }
    if (mFont == nullptr) {
        mContext.space.DrawImage(raster.Get(), 0.0F, 0.0F, 1.0F, 1.0F);
        return;
    }
    // The masks of glyphs are not turned over by those who write them.
    const ScopedLevel level(*this);
    if (level.IsSaved() && Concat({1, 0, 0, -1, 0, 1})) {
        mContext.space.DrawImage(raster.Get(), 0.0F, 0.0F, 1.0F, 1.0F);
    }
}

void ContentInterpreter::PaintStencil(Image& image) {
    if (!MayPaint(true)) {
        return;
    }
    if (Top().fillPattern) {
        PaintPatternThrough(image);
        return;
    }
    PlaneSourcePtr bits = image.StencilBits();
    const HOST::CurrentColor& fill = State().fill;
    if (!bits || !fill.space) {
        return;
    }
    std::array<float, COLOR::kMaxComponents> values = fill.values;
    HOST::ColorSpacePtr space = fill.space;
    // A palette entry of an image mask is written as 0 to 1, which Lab is not.
    if (IsLab(SpaceBehind(*Top().fillSpace))) {
        std::array<float, 3> pcs{};
        space = mContext.colorSpaces.Named("DeviceRGB", {})->space;
        fill.space->ToPCS(fill.values.data(), pcs.data(), State().intent);
        space->FromPCS(pcs.data(), values.data(), State().intent);
    }
    DrawStencil(space, PaletteOf(values.data(), space->GetComponentCount()), std::move(bits),
                image.Width(), image.Height(), image.Label());
}

// An indexed raster of one colour with an opacity that is not whole becomes an image mask.
void ContentInterpreter::DrawStencil(const HOST::ColorSpacePtr& space,
                                     std::vector<std::uint8_t> palette, PlaneSourcePtr bits,
                                     std::int32_t width, std::int32_t height,
                                     const std::string& label) {
    HOST::RasterFormat format{mContext.colorSpaces.PaletteSpace(space, std::move(palette)), width,
                              height, 1};
    const auto shared = std::make_shared<SharedPlanes>(std::move(bits), 1, LineBytesOf(format));
    const HOST::RasterPtr raster =
        format.space ? HOST::MakeRaster(format, std::make_unique<BandPlanes>(shared, 0)) : nullptr;
    if (raster) {
        HOST::AddAlpha(*raster, 1, std::make_unique<BandPlanes>(shared, 0), false);
    }
    DrawRaster(raster, label);
}

// One pixel that shines through a mask is that mask, painted.
void ContentInterpreter::PaintPixel(PlanarImage image, ImageMask mask, const std::string& label) {
    if (!image.source) {
        return;
    }
    const std::size_t planes = image.PlaneCount();
    const std::size_t bytes = image.format.bits == 16 ? 2 : 1;
    const PlaneLines pixel(planes, bytes);
    image.source->ReadLine(0, pixel.Pointers());
    std::vector<std::uint8_t> palette;
    for (std::size_t i = 0; i < 2 * planes; ++i) {
        // Words are native, so their high byte is the second.
        palette.push_back(pixel.Pointers()[i % planes][bytes - 1]);
    }
    auto bits = std::make_unique<BitPlanes>(std::move(mask.opacity), mask.width);
    DrawStencil(image.format.space, std::move(palette), std::move(bits), mask.width, mask.height,
                label);
}

// The one place where opacity either goes on with the raster or is mixed with white paper.
void ContentInterpreter::PaintSoft(Image& source, ImageMask mask, bool isOpaque) {
    PlanarImage image = source.Planes(true);
    if (!image.source) {
        return;
    }
    const std::int32_t width = std::max(image.format.width, mask.width);
    const std::int32_t height = std::max(image.format.height, mask.height);
    image.Enlarge(width, height);
    if (mask.width != width || mask.height != height) {
        const HOST::RasterFormat format{nullptr, mask.width, mask.height, 8};
        mask.opacity =
            std::make_unique<EnlargedPlanes>(std::move(mask.opacity), format, 1, width, height);
    }
    const auto opacity =
        std::make_shared<SharedPlanes>(std::move(mask.opacity), 1, static_cast<std::size_t>(width));
    const MaskedPlanes::Layout layout{width, image.format.bits, image.PlaneCount(), image.paper,
                                      !mContext.keepsAlpha};
    if (!mContext.keepsAlpha || !mask.matte.empty()) {
        image.source = std::make_unique<MaskedPlanes>(std::move(image.source),
                                                      std::make_unique<BandPlanes>(opacity, 0),
                                                      layout, std::move(mask.matte));
    }
    const HOST::RasterPtr raster = std::move(image).ToRaster();
    if (raster && mContext.keepsAlpha) {
        HOST::AddAlpha(*raster, 8, std::make_unique<BandPlanes>(opacity, 0), isOpaque);
    } else if (raster) {
        Lose(TRANSPARENCY::kAlpha);
    }
    DrawRaster(raster, source.Label());
}

void ContentInterpreter::ForBands(const ImageMask& mask, const PaintBand& paint) {
    const auto paintAll = [&](const std::vector<PixelBox>& boxes) {
        for (std::size_t i = 0; i < boxes.size(); i += kMostBoxesOfClip) {
            const std::size_t count = std::min(kMostBoxesOfClip, boxes.size() - i);
            const ScopedLevel level(*this);
            if (level.IsSaved() &&
                Concat({1.0 / mask.width, 0.0, 0.0, -1.0 / mask.height, 0.0, 1.0})) {
                paint(std::span(boxes).subspan(i, count));
            }
        }
    };
    OpaqueBoxes boxes(mask.width);
    std::vector<std::uint8_t> line(static_cast<std::size_t>(mask.width));
    std::uint8_t* const plane = line.data();
    for (std::int32_t y = 0; y < mask.height; ++y) {
        mask.opacity->ReadLine(y, &plane);
        boxes.AddLine(plane);
        if (boxes.Count() >= kBoxesOfBand) {
            paintAll(boxes.Take());
        }
    }
    paintAll(boxes.Take());
}

void ContentInterpreter::PaintPatternThrough(Image& image) {
    ImageMask mask{image.Opacity(), image.Width(), image.Height(), {}};
    if (!mask.opacity) {
        return;
    }
    if (Survey(mask) == MaskKind::kSoft) {
        mContext.reporter.Warn("pattern", image.Label() +
                                              ": the pattern painted through it is left out: it "
                                              "is too finely divided");
        return;
    }
    mask.opacity = image.Opacity();
    ForBands(mask, [this](std::span<const PixelBox> boxes) {
        PathOf(boxes).PlayTo(mContext.space);
        FillPath(false);
        mContext.space.NewPath();
    });
}

// The opaque boxes of a band clip the lines of the image that lie under it.
void ContentInterpreter::PaintClipped(PlanarImage image, const ImageMask& mask,
                                      const std::string& label) {
    if (!image.source) {
        return;
    }
    Banded banded{image.format, image.isDeviceN, nullptr, mask.width, mask.height, label};
    banded.shared = std::make_shared<SharedPlanes>(std::move(image.source), image.PlaneCount(),
                                                   LineBytesOf(image.format));
    ForBands(mask, [&](std::span<const PixelBox> boxes) { PaintBoxes(banded, boxes); });
}

void ContentInterpreter::PaintBoxes(const Banded& banded, std::span<const PixelBox> boxes) {
    HOST::BaseConnectionSpace& space = mContext.space;
    const auto columns = static_cast<float>(banded.columns);
    const auto rows = static_cast<float>(banded.rows);
    std::int64_t top = banded.rows;
    std::int64_t bottom = 0;
    for (const PixelBox& box : boxes) {
        top = std::min<std::int64_t>(top, box.top);
        bottom = std::max<std::int64_t>(bottom, box.bottom);
    }
    PathOf(boxes).PlayTo(space);
    space.Clip();
    space.NewPath();
    const std::int64_t height = banded.format.height;
    const std::int64_t first = top * height / banded.rows;
    const std::int64_t end = (bottom * height + banded.rows - 1) / banded.rows;
    PlanarImage band;
    band.format = banded.format;
    band.format.height = static_cast<std::int32_t>(end - first);
    band.isDeviceN = banded.isDeviceN;
    band.source = std::make_unique<BandPlanes>(banded.shared, static_cast<std::int32_t>(first));
    const float scale = rows / static_cast<float>(height);
    space.Concat(columns, 0.0F, 0.0F, -scale * static_cast<float>(end - first), 0.0F,
                 scale * static_cast<float>(end));
    PaintRaster(std::move(band), banded.label);
}

}  // namespace VANTIX::PDF
