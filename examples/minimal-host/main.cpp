// SPDX-License-Identifier: MIT
// The smallest host: draws one page through the drawing interface and writes it as PostScript.
//
//     minimal-host out.ps
#include <fcntl.h>

#include <iostream>
#include <numbers>
#include <string>
#include <string_view>

#include "host/graphics/baseconnectionspace.h"
#include "host/host.h"
#include "host/io/fileprovider.h"

namespace {

using namespace VANTIX;

/// Makes a device colour the fill colour. CMYK values are complements: 1 is no ink.
void SetFillColor(HOST::Host& host, HOST::BaseConnectionSpace& space, FourCC family,
                  std::initializer_list<float> values) {
    HOST::CurrentColor& fill = space.State().Current().fill;
    fill.space = host.ColorSpaces().DeviceSpace(family);
    fill.id = family;
    fill.count = 0;
    for (const float value : values) {
        fill.values[static_cast<std::size_t>(fill.count++)] = value;
    }
}

/// A ring of petals in the middle of the page.
void DrawFlower(HOST::Host& host, HOST::BaseConnectionSpace& page) {
    constexpr int kPetals = 12;
    const float petal[] = {60, 100, 60, 180, 0, 200, -60, 180, -60, 100, 0, 0};
    page.SaveGraphicsState();
    page.Translate(306, 396);
    for (int i = 0; i < kPetals; ++i) {
        const float step = static_cast<float>(i) / kPetals;
        SetFillColor(host, page, "cmyk"_cc, {1 - step, step, 1, 1});
        page.MoveTo(0, 0);
        page.CurveTo(petal, 2);
        page.ClosePath();
        page.Fill();
        page.NewPath();
        page.Rotate(2 * std::numbers::pi_v<float> / kPetals);
    }
    SetFillColor(host, page, "gray"_cc, {1});
    page.Arc(0, 0, 30, 0, 360);
    page.ClosePath();
    page.Fill();
    page.NewPath();
    page.RestoreGraphicsState();
}

void WriteText(HOST::FileProvider& out, std::string_view text) {
    out.Write(text.data(), text.size());
}

/// One job: begin, draw, show the page, end.
bool WritePage(HOST::Host& host, HOST::FileProvider& out) {
    const auto policy = host.CreatePolicy();
    const auto exporter = host.CreateExporter();
    if (!policy || !exporter) {
        return false;
    }
    policy->SetInt(103, 3);   // Language Level
    policy->SetInt(100, 10);  // colours as they are
    // The plug-in's header calls what only a distiller knows; page sizes are the host's affair.
    WriteText(
        out,
        "%!PS-Adobe-3.0\n"
        "/setdistillerparams where {pop} {userdict /setdistillerparams /pop load put} ifelse\n"
        "<< /PageSize [612 792] >> setpagedevice\n");
    auto* page = HOST::BaseConnectionSpace::From(exporter->Begin(out, policy.Get()));
    if (page == nullptr) {
        return false;
    }
    page->SaveGraphicsState();
    page->SaveInitialPageMatrix();
    DrawFlower(host, *page);
    page->RestoreGraphicsState();
    WriteText(out, "gsave showpage grestore\n");
    exporter->End();
    out.Flush();
    return out.FirstError() == 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: minimal-host OUTPUT.ps\n";
        return 2;
    }
    HOST::Host host;
    std::string error;
    if (!host.LoadPlugin(HOST::Host::FindPlugin(), error)) {
        std::cerr << error << '\n';
        return 1;
    }
    const int file = open(argv[1], O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    const auto out = MakeObject<HOST::FileProvider>(file);
    if (!WritePage(host, *out)) {
        std::cerr << argv[1] << " was not written\n";
        return 1;
    }
    return 0;
}
