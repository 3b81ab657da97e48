// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

#include "core/color/iconnectioncolorspace.h"
#include "core/color/ipatterncolorspaces.h"
#include "core/graphics/irastercomponent.h"
#include "core/graphics/itextobject.h"
#include "core/graphics/pluginhelper/delegateconnectionspace.h"
#include "core/object/tobject.h"

namespace VANTIX::TESTS {

/// A delegate space that writes every drawing call as a line, and at painting the colour in force:
/// "fill gray 0.5".
class RecordingSpace : public GRAPHICS::DelegateConnectionSpace {
public:
    std::string calls;

    void SaveGraphicsState() override { Write("save", {}); }

    void RestoreGraphicsState() override { Write("restore", {}); }

    void Concat(float a, float b, float c, float d, float e, float f) override {
        Write("concat", {a, b, c, d, e, f});
    }

    void NewPath() override { Write("newpath", {}); }

    void RegisterColorSpaceUse(ResourceId id) override { Write("use", {static_cast<float>(id)}); }

    void MoveTo(float x, float y) override { Write("move", {x, y}); }

    void LineTo(const float* points, std::int32_t count) override {
        Write("line", points, 2 * count);
    }

    void CurveTo(const float* points, std::int32_t count) override {
        Write("curve", points, 6 * count);
    }

    void ClosePath() override { Write("close", {}); }

    void Clip() override { Write("clip", {}); }

    void EOClip() override { Write("eoclip", {}); }

    void Fill() override { Paint("fill", true); }

    void EOFill() override { Paint("eofill", true); }

    void Stroke() override { Paint("stroke", false); }

    void SetLineWidth(float width) override { Write("width", {width}); }

    void SetLineCap(std::int32_t cap) override { Write("cap", {static_cast<float>(cap)}); }

    void SetLineJoin(std::int32_t join) override { Write("join", {static_cast<float>(join)}); }

    void SetDash(float phase, const float* lengths, std::int32_t count) override {
        Write("dash", lengths, count);
        calls.back() = ' ';
        Write("phase", {phase});
    }

    void SetMiterLimit(float limit) override { Write("miter", {limit}); }

    void SetFlatness(float flatness) override { Write("flat", {flatness}); }

    void SelectRenderingIntent(COLOR::TRenderingIntent intent) override {
        Write("intent", {static_cast<float>(intent)});
    }

    /// "group 0 0 9 9 isolated cmyk alpha 0.5": the box, flags, space, and how it is painted.
    bool BeginTransparencyGroup(const float* bbox, const float* matrix, bool isolated,
                                bool knockout, COLOR::IConnectionColorSpace* space) override {
        Write("group", bbox, 4);
        calls.pop_back();
        calls += matrix == nullptr ? "" : " matrix";
        calls += isolated ? " isolated" : "";
        calls += knockout ? " knockout" : "";
        calls += space == nullptr ? "" : ' ' + SpaceText(space);
        calls += '\n';
        TellTransparency();
        return true;
    }

    void EndTransparencyGroup() override { Write("endgroup", {}); }

    /// "mask luminosity 0 0 9 9 gray on 0 through power isolated": kind, box, space, backdrop,
    /// transfer function and flags. When the state lets it go, "unmask" follows.
    bool BeginSoftMask(COLOR::IColorFunction* transfer, const float* matrix, float x0, float y0,
                       float x1, float y1, COLOR::IConnectionColorSpace* space,
                       const float* backdrop, std::uint64_t backdropCount, bool isolated,
                       bool knockout, GRAPHICS::IGraphicsState::TSoftMaskType type) override {
        using Type = GRAPHICS::IGraphicsState::TSoftMaskType;
        Write(type == Type::kLuminosity ? "mask luminosity" : "mask alpha", {x0, y0, x1, y1});
        calls.pop_back();
        calls += ' ' + SpaceText(space);
        Append("on", backdrop, static_cast<std::int32_t>(backdropCount));
        calls += transfer == nullptr ? "" : " through " + FunctionText(transfer);
        calls += matrix == nullptr ? "" : " matrix";
        calls += isolated ? " isolated" : "";
        calls += knockout ? " knockout" : "";
        calls += '\n';
        TellTransparency();
        return true;
    }

    void EndSoftMask() override {
        static constexpr GUID kKey = "0E6A4C11-5F0B-4D3C-8E55-2B7A9A1C6D01"_guid;
        Write("endmask", {});
        const auto ending = MakeObject<MaskEnd>(*this);
        IObject* holder = mGraphicsState->GetSoftMaskHolder();
        if (holder == nullptr) {
            Write("?holder", {});
        } else {
            holder->Aggregate(ending.Get(), kKey);
        }
    }

    void SaveInitialPageMatrix() override { Write("initialmatrix", {}); }

    /// "font Helvetica 12 1 0 0 1": name, size and the linear part of the text matrix. A matrix
    /// with another linear part selects the font, too.
    void SelectCurrentFont() override {
        calls += std::string("font ") + mGraphicsState->GetFontName();
        std::vector<float> numbers = {mGraphicsState->GetFontSize(), 1, 0, 0, 1};
        if (!mTexts.empty()) {
            std::copy_n(mTexts.back()->linear.begin(), 4, numbers.begin() + 1);
        }
        Write("", numbers.data(), 5);
    }

    bool BeginTextObject() override {
        mTexts.push_back(MakeObject<Text>(*this));
        Write("text", {});
        return true;
    }

    bool EndTextObject() override {
        mTexts.pop_back();
        const auto mode = mGraphicsState->GetTextRendering();
        Write(mode == GRAPHICS::IGraphicsState::TTextRendering::kClip ? "endtext clip" : "endtext",
              {});
        return true;
    }

    GRAPHICS::ITextObject* GetCurrentTextObject() const override {
        return mTexts.empty() ? nullptr : mTexts.back().Get();
    }

    /// "show0 (abc) char 1 word 2": the rendering mode, the string, and spacing where there is any.
    void DrawTextW(const void* text, std::int32_t length) override {
        const auto mode = static_cast<int>(mGraphicsState->GetTextRendering());
        calls += "show" + std::to_string(mode) + " (" +
                 std::string(static_cast<const char*>(text), static_cast<std::size_t>(length)) +
                 ")\n";
        const auto tell = [this](const char* name, float spacing) {
            if (spacing != 0.0F) {
                calls.pop_back();
                Write(name, {spacing});
            }
        };
        tell(" char", mGraphicsState->GetCharSpacing());
        tell(" word", mGraphicsState->GetWordSpacing());
        tell(" scaled", mGraphicsState->GetHorizontalScaling() - 1.0F);
    }

    /// "image rgb 2x1x8 ff00 80ff 0000": the planes in hexadecimal, lines parted by strokes. The
    /// palette of an Indexed space stands in angles; extra channels follow under their types.
    void DrawImage(GRAPHICS::IRasterComponent* raster, float x, float y, float width,
                   float height) override {
        calls += "image " + SpaceText(raster->GetColorSpace()) + ' ' +
                 std::to_string(raster->GetWidth()) + 'x' + std::to_string(raster->GetHeight()) +
                 'x' + std::to_string(raster->GetBitsPerSample());
        for (std::int32_t i = 0; i < raster->GetPrimaryCount(); ++i) {
            calls += ' ' + PlaneText(*raster, *raster->GetPrimary(i));
        }
        for (std::int32_t i = 0; i < raster->GetExtraCount(); ++i) {
            const GRAPHICS::IChannelDesc* extra = raster->GetExtra(i);
            calls += extra->GetType() == "LPHA"_cc ? " alpha" : " spot";
            calls += extra->GetData()->IsFullyOpaque() ? "" : "*";
            calls += std::to_string(extra->GetBits()) + ' ' + PlaneText(*raster, *extra);
        }
        const bool isUnit = x == 0.0F && y == 0.0F && width == 1.0F && height == 1.0F;
        calls += isUnit ? "\n" : " elsewhere\n";
    }

    /// "shading axial rgb power coords 0 0 9 0 domain 0 1 extend 0 1 rect 0 0 100 100": kind, space
    /// and function ("-" without), then what the kind has, background, box and rectangle. The
    /// second number of a shading makes it "shading2", and so on.
    void FillWithColorSpace(COLOR::IConnectionColorSpace* space, ResourceId id, float x, float y,
                            float width, float height) override {
        const auto known = std::find(mShadingIds.begin(), mShadingIds.end(), id);
        const auto order = known - mShadingIds.begin() + 1;
        if (known == mShadingIds.end()) {
            mShadingIds.push_back(id);
        }
        calls += "shading" + (order > 1 ? std::to_string(order) : "");
        TellGradients(space);
        TellMeshes(space);
        if (const auto* f = FindInterface<COLOR::IFunctionShadingColorSpace>(
                space, COLOR::IID_IFUNCTIONSHADING)) {
            float domain[4];
            float matrix[6];
            f->GetDomain(domain);
            f->GetMatrix(matrix);
            TellCommon("function", *f);
            Append("domain", domain, 4);
            Append("matrix", matrix, 6);
        }
        Write(" rect", {x, y, width, height});
    }

private:
    struct MaskEnd : TObject<IObject> {
        explicit MaskEnd(RecordingSpace& theSpace) : space(theSpace) {}

        ~MaskEnd() override { space.Write("unmask", {}); }

        MaskEnd(const MaskEnd&) = delete;
        MaskEnd& operator=(const MaskEnd&) = delete;
        MaskEnd(MaskEnd&&) = delete;
        MaskEnd& operator=(MaskEnd&&) = delete;

        RecordingSpace& space;
    };

    struct Text : TObject<GRAPHICS::ITextObject> {
        explicit Text(RecordingSpace& theSpace) : space(theSpace) {}

        bool Reserved1() override { return true; }

        bool Reserved2() override { return true; }

        void ConcatTextMatrix(const float* /*matrix*/) override { space.Write("?concat", {}); }

        void MoveText(float tx, float ty) override { space.Write("?move", {tx, ty}); }

        void NextLine() override { space.Write("?nextline", {}); }

        void AdvanceGlyph(float w0, float w1) override { space.Write("?glyph", {w0, w1}); }

        void AdvanceText(float t) override { space.Write("?advance", {t}); }

        void SetTextMatrix(const float matrix[6]) override {
            if (!std::equal(linear.begin(), linear.end(), matrix)) {
                std::copy_n(matrix, 4, linear.begin());
                space.SelectCurrentFont();
            }
            space.Write("at", {matrix[4], matrix[5]});
        }

        GRAPHICS::IConnectionSpace* GetConnectionSpace() override { return &space; }

        RecordingSpace& space;
        std::array<float, 4> linear{1, 0, 0, 1};
    };

    void Append(const char* name, const float* numbers, std::int32_t count) {
        calls += ' ';
        Write(name, numbers, count);
        calls.pop_back();
    }

    static std::string FunctionText(const COLOR::IColorFunction* function) {
        const auto list = [](const auto* owner) {
            std::string text;
            for (std::int32_t i = 0; i < owner->GetFunctionCount(); ++i) {
                text += (i > 0 ? "," : "") + FunctionText(owner->GetFunction(i));
            }
            return text;
        };
        if (const auto* stitching =
                FindInterface<COLOR::IStitchingFunction>(function, COLOR::IID_ISTITCHINGFUNCTION)) {
            return '(' + list(stitching) + ')';
        }
        if (const auto* array =
                FindInterface<COLOR::IFunctionArray>(function, COLOR::IID_IFUNCTIONARRAY)) {
            return '[' + list(array) + ']';
        }
        if (const auto* table =
                FindInterface<COLOR::ISampledFunction>(function, COLOR::IID_ISAMPLEDFUNCTION)) {
            return "table" + std::to_string(table->GetSizes()[0]);
        }
        return FindInterface<IObject>(function, COLOR::IID_IEXPONENTIALFUNCTION) == nullptr
                   ? "-"
                   : "power";
    }

    void TellCommon(const char* kind, const COLOR::IShadingColorSpace& shading) {
        calls += ' ' + std::string(kind) + ' ' + SpaceText(shading.GetShadingSpace()) + ' ' +
                 FunctionText(shading.GetFunction());
        std::int32_t count = 0;
        if (const float* background = shading.GetBackground(count)) {
            Append("background", background, count);
        }
        float box[4];
        if (shading.GetBoundingBox(box)) {
            Append("box", box, 4);
        }
    }

    template <class Gradient>
    void TellGradient(const char* kind, const Gradient* gradient, std::int32_t count) {
        if (gradient == nullptr) {
            return;
        }
        float coordinates[6];
        float domain[2];
        bool start = false;
        bool end = false;
        gradient->GetCoordinates(coordinates);
        gradient->GetDomain(domain);
        gradient->GetExtend(start, end);
        TellCommon(kind, *gradient);
        Append("coords", coordinates, count);
        Append("domain", domain, 2);
        calls += std::string(" extend ") + (start ? "1 " : "0 ") + (end ? '1' : '0');
    }

    void TellGradients(COLOR::IConnectionColorSpace* space) {
        TellGradient(
            "axial",
            FindInterface<COLOR::IAxialShadingPatternColorSpace>(space, COLOR::IID_IAXIALSHADING),
            4);
        TellGradient(
            "radial",
            FindInterface<COLOR::IRadialShadingPatternColorSpace>(space, COLOR::IID_IRADIALSHADING),
            6);
    }

    /// "mesh 8/16/8" stands for the bits of flags, coordinates and components.
    void TellMesh(const char* kind, const COLOR::IMeshShadingColorSpace& mesh) {
        TellCommon(kind, mesh);
        std::int32_t size = 0;
        std::int32_t count = 0;
        const float* decode = mesh.GetDecode(count);
        const std::uint8_t* data = mesh.GetMeshData(size);
        calls += " mesh " + std::to_string(mesh.GetBitsPerFlag()) + '/' +
                 std::to_string(mesh.GetBitsPerCoordinate()) + '/' +
                 std::to_string(mesh.GetBitsPerComponent());
        Append("decode", decode, count);
        calls += ' ' + Hex(data, static_cast<std::size_t>(size));
    }

    void TellMeshes(COLOR::IConnectionColorSpace* space) {
        if (const auto* mesh = FindInterface<COLOR::IFreeFormTriangleMeshesShadingColorSpace>(
                space, COLOR::IID_IFREEFORMMESHSHADING)) {
            TellMesh("triangles", *mesh);
        }
        if (const auto* mesh = FindInterface<COLOR::ILatticeFormTriangleMeshesShadingColorSpace>(
                space, COLOR::IID_ILATTICEMESHSHADING)) {
            const std::string kind = "rows" + std::to_string(mesh->GetVerticesPerRow());
            TellMesh(kind.c_str(), *mesh);
        }
        if (const auto* mesh = FindInterface<COLOR::ITensorShadingPatternColorSpace>(
                space, COLOR::IID_ITENSORSHADING)) {
            const bool isCoons =
                FindInterface<IObject>(space, COLOR::IID_ICOONSPATCHMARKER) != nullptr;
            TellMesh(isCoons ? "coons" : "tensor", *mesh);
        }
    }

    static std::string Hex(const std::uint8_t* bytes, std::size_t count) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) {
            char digits[3];
            std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(bytes[i]));
            text += digits;
        }
        return text;
    }

    static std::string SpaceText(COLOR::IConnectionColorSpace* space) {
        const auto* indexed = FindInterface<COLOR::IIndexedConnectionColorSpace>(
            space, COLOR::IID_IINDEXEDCOLORSPACE);
        if (indexed != nullptr) {
            const auto bytes =
                static_cast<std::size_t>(indexed->GetEntryCount()) *
                static_cast<std::size_t>(indexed->GetBaseSpace()->GetComponentCount());
            return SpaceText(indexed->GetBaseSpace()) + '<' + Hex(indexed->GetLUT(), bytes) + '>';
        }
        const auto* device =
            FindInterface<COLOR::IDeviceConnectionColorSpace>(space, COLOR::IID_IDEVICECOLORSPACE);
        const FourCC family = device == nullptr ? 0 : device->GetFamily();
        const char* name = family == "gray"_cc ? "gray" : (family == "cmyk"_cc ? "cmyk" : "rgb");
        return family == 0 ? '#' + std::to_string(space->GetComponentCount()) : name;
    }

    static std::string PlaneText(const GRAPHICS::IRasterComponent& raster,
                                 const GRAPHICS::IChannelDesc& channel) {
        const std::int32_t bytes = (raster.GetWidth() * channel.GetBits() + 7) / 8;
        std::string text;
        for (std::int32_t y = 0; y < raster.GetHeight(); ++y) {
            const std::uint8_t* line = channel.GetData()->GetLine(y);
            text += y > 0 ? "/" : "";
            text += line == nullptr ? "missing" : Hex(line, static_cast<std::size_t>(bytes));
        }
        return text;
    }

    void Write(const char* name, const float* numbers, std::int32_t count) {
        calls += name;
        for (std::int32_t i = 0; i < count; ++i) {
            char text[32];
            std::snprintf(text, sizeof text, " %.4g", static_cast<double>(numbers[i]));
            calls += text;
        }
        calls += '\n';
    }

    void Write(const char* name, std::initializer_list<float> numbers) {
        Write(name, numbers.begin(), static_cast<std::int32_t>(numbers.size()));
    }

    void Paint(const char* name, bool fill) {
        const COLOR::IConnectionColorSpace* space = mGraphicsState->GetColorSpace(fill);
        const std::int32_t count = space == nullptr ? 0 : space->GetComponentCount();
        float values[COLOR::kMaxComponents] = {};
        mGraphicsState->GetColor(fill, values, count);
        const ResourceId id = mGraphicsState->GetColorSpaceID(fill);
        std::string label(name);
        if (id >= "    "_cc) {
            label += ' ';
            for (int shift = 24; shift >= 0; shift -= 8) {
                const auto c = static_cast<char>((id >> static_cast<unsigned>(shift)) & 0xFFU);
                label += c == ' ' ? "" : std::string(1, c);
            }
        } else {
            label += " #" + std::to_string(id);
        }
        Write(label.c_str(), values, count);
        TellTransparency();
    }

    /// Appends to the last line what of alpha and blend mode is not as on a new page: "alpha 0.5 1
    /// blend 1 masked".
    void TellTransparency() {
        calls.pop_back();
        const float fill = mGraphicsState->GetAlpha(true);
        const float stroke = mGraphicsState->GetAlpha(false);
        const auto mode = static_cast<int>(mGraphicsState->GetBlendMode());
        if (fill != 1.0F || stroke != 1.0F) {
            Write(" alpha", {fill, stroke});
            calls.pop_back();
        }
        calls += mode == 0 ? "" : " blend " + std::to_string(mode);
        calls += mGraphicsState->GetSoftMaskHolder() == nullptr ? "" : " masked";
        calls += '\n';
    }

    std::vector<ResourceId> mShadingIds;
    std::vector<TInterfacePtr<Text>> mTexts;
};

}  // namespace VANTIX::TESTS
