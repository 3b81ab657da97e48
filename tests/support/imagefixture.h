// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "asiscompositeconnectionspacedelegate/asiscompositeconnectionspacedelegate.h"
#include "support/fakegraphicsstate.h"
#include "support/fakekeyedproperties.h"
#include "support/fakeraster.h"
#include "support/ghostscriptpages.h"
#include "support/outputcontextfixture.h"

namespace VANTIX::TEST {

/// A palette in host form.
class FakeIndexedSpace
    : public FakeColorSpace<COLOR::IIndexedConnectionColorSpace, COLOR::IID_IINDEXEDCOLORSPACE> {
public:
    FakeIndexedSpace(TInterfacePtr<COLOR::IConnectionColorSpace> of, std::vector<std::uint8_t> lut)
        : base(std::move(of)), table(std::move(lut)) {}

    TInterfacePtr<COLOR::IConnectionColorSpace> base;
    std::vector<std::uint8_t> table;

    COLOR::IConnectionColorSpace* GetBaseSpace() const override { return base.Get(); }

    std::int32_t GetEntryCount() const override {
        return static_cast<std::int32_t>(table.size()) / base->GetComponentCount();
    }

    const std::uint8_t* GetLUT() const override { return table.empty() ? nullptr : table.data(); }
};

/// A delegate, as-is unless a test gives another one, on an output context that writes to memory,
/// without filters.
class ImageFixture : public OutputContextFixture {
protected:
    ImageFixture() {
        factory->Offer<FakeKeyedProperties>(IO::CLSID_KEYEDPROPERTIES);
        factory->Offer<FakeRaster>(GRAPHICS::CLSID_RASTERCOMPONENT);
        factory->Offer<FakeChannel>(GRAPHICS::CLSID_CHANNELDESC);
        factory->Offer<FakeChannelData>(GRAPHICS::CLSID_CHANNELDATA);
    }

    /// Gives the delegate context and state.
    template <class T>
    TInterfacePtr<T> Connect(TInterfacePtr<T> delegate) {
        delegate->Aggregate(context.Get(), PS::IID_IPOSTSCRIPTOUTPUTCONTEXT);
        delegate->SetGraphicsState(state.Get());
        return delegate;
    }

    void Draw(std::uint32_t options, GRAPHICS::IRasterComponent& raster) {
        Draw(*Connect(
                 MakeObject<RENDERING::AsIsCompositeConnectionSpaceDelegate>(*factory, options)),
             raster);
    }

    void Draw(RENDERING::IConnectionSpaceDelegate& delegate, GRAPHICS::IRasterComponent& raster) {
        delegate.Image(raster, 0, 0, 1, 1);
        TakeWritten();
    }

    /// Takes what was written apart into `text` and `samples`.
    void TakeWritten() {
        const std::string written = Written();
        const std::size_t end = written.find("image");
        const std::size_t data = end == std::string::npos ? end : written.find('\n', end);
        text = written.substr(0, data == std::string::npos ? data : data + 1);
        samples =
            data == std::string::npos
                ? Line()
                : Line(written.begin() + 1 + static_cast<std::ptrdiff_t>(data), written.end());
    }

    /// The value of a key of the image dictionary: "[0 1]".
    [[nodiscard]] std::string Entry(const std::string& key) const {
        const std::size_t at = text.rfind("/" + key + " ");
        const std::size_t begin = at == std::string::npos ? at : at + key.size() + 2;
        return at == std::string::npos ? "" : text.substr(begin, text.find('\n', begin) - begin);
    }

    /// What stands before the image dictionary.
    [[nodiscard]] std::string ColourText() const {
        return text.substr(0, text.rfind("<<\n/ImageType"));
    }

    /// Executes the colour text; what a further program prints.
    [[nodiscard]] std::string Run(const std::string& program) const {
        const auto run = RunPostScript("%!PS\n" + ColourText() + "\n" + program);
        EXPECT_EQ(run.complaint, "") << ColourText();
        return run.text;
    }

    /// What the tint transform of the current space makes of tints: ink or light in hundredths,
    /// the last component first.
    [[nodiscard]] std::string Tints(const std::string& tints) const {
        return Run("currentcolorspace 3 get /transform exch def " + tints +
                   " transform count {100 mul round cvi =string cvs print ( ) print} repeat");
    }

    static TInterfacePtr<FakeRaster> Raster(TInterfacePtr<COLOR::IConnectionColorSpace> space,
                                            std::int32_t width, std::int32_t bits,
                                            std::vector<Line> planes) {
        auto raster = MakeObject<FakeRaster>();
        raster->space = std::move(space);
        raster->width = width;
        raster->bits = bits;
        for (Line& plane : planes) {
            raster->Plane(std::move(plane));
        }
        return raster;
    }

    std::string text;  ///< up to and including the image operator
    Line samples;      ///< what follows it
    RecordingLogger& log = RecordingLogger::Get();
    TInterfacePtr<FakeGraphicsState> state = MakeObject<FakeGraphicsState>();
    TInterfacePtr<FakeDeviceSpace> gray = MakeObject<FakeDeviceSpace>("gray"_cc, 1U);
    TInterfacePtr<FakeDeviceSpace> rgb = MakeObject<FakeDeviceSpace>("rgb "_cc, 3U);
    TInterfacePtr<FakeDeviceSpace> cmyk = MakeObject<FakeDeviceSpace>("cmyk"_cc, 4U);
};

}  // namespace VANTIX::TEST
