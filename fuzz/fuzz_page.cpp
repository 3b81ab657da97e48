// SPDX-License-Identifier: MIT
// Plays a page with transparency kept, into a job of the built plug-in.
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include "core/object/tobject.h"
#include "host/graphics/baseconnectionspace.h"
#include "host/host.h"
#include "host/io/memoryprovider.h"
#include "host/support/logger.h"
#include "pdf/pageplayer.h"

namespace {

using namespace VANTIX;

constexpr std::int32_t kTransparencyKey = 101;

/// Content comes in three parts: of the page, of the form F and of the form G.
constexpr char kNextPart = '|';

/// What all three may name. F and the mask M play G; G names no forms, so that no input takes long.
constexpr std::string_view kStates =
    "/ExtGState << /A << /ca 0.5 /CA 0.25 >> /B << /BM /Multiply >> /N << /SMask /None /ca 1 /CA 1 "
    "/BM /Normal >> /M << /SMask << /S /Luminosity /G 6 0 R /BC [0.5] >> >> /K << /SMask << /S "
    "/Alpha /G 6 0 R /TR << /FunctionType 2 /Domain [0 1] /N 2 >> >> >> >> "
    "/Shading << /S << /ShadingType 2 /ColorSpace /DeviceRGB /Coords [0 0 9 9] /Function << "
    "/FunctionType 2 /Domain [0 1] /N 1 /C0 [1 0 0] /C1 [0 0 1] >> >> >> ";
constexpr std::string_view kImage =
    "/Subtype /Image /Width 2 /Height 1 /BitsPerComponent 8 /ColorSpace /DeviceGray";
constexpr std::string_view kGroup =
    "/Subtype /Form /BBox [0 0 50 50] /Group << /S /Transparency /I true /CS /DeviceRGB >> ";

std::string TakePart(std::string_view& data) {
    const std::size_t end = data.find(kNextPart);
    std::string part(data.substr(0, end));
    data.remove_prefix(end == std::string_view::npos ? data.size() : end + 1);
    return part;
}

void AddStream(std::string& file, int number, std::string_view entries, std::string_view data) {
    file += std::to_string(number) + " 0 obj\n<< " + std::string(entries) + " /Length " +
            std::to_string(data.size()) + " >>\nstream\n" + std::string(data) +
            "\nendstream\nendobj\n";
}

/// A page around the content; the library finds the objects without a table.
std::string PageOf(std::string_view data) {
    const std::string states(kStates);
    const std::string resources = "/Resources << " + states +
                                  "/XObject << /F 5 0 R /G 6 0 R /I 7 0 R >> /Pattern << /P 9 0 R "
                                  "/Q << /PatternType 2 /Shading << /ShadingType 2 /ColorSpace "
                                  "/DeviceGray /Coords [0 0 9 9] /Function << /FunctionType 2 "
                                  "/Domain [0 1] /N 1 >> >> >> >> >> ";
    std::string file =
        "%PDF-1.7\n1 0 obj\n<< /Type /Catalog /Pages 2 0 R >>\nendobj\n2 0 obj\n<< /Type /Pages "
        "/Kids [3 0 R] /Count 1 >>\nendobj\n3 0 obj\n<< /Type /Page /Parent 2 0 R /MediaBox [0 0 "
        "100 100] /Contents 4 0 R /Group << /S /Transparency /CS /DeviceCMYK >> " +
        resources + ">>\nendobj\n";
    AddStream(file, 4, "", TakePart(data));
    AddStream(file, 5, std::string(kGroup) + resources, TakePart(data));
    AddStream(file, 6, std::string(kGroup) + "/Resources << " + states + ">>", TakePart(data));
    AddStream(file, 7, std::string(kImage) + " /SMask 8 0 R", std::string(2, '\x20'));
    AddStream(file, 8, kImage, "\x40\x80");
    AddStream(
        file, 9,
        "/PatternType 1 /PaintType 1 /TilingType 1 /BBox [0 0 9 9] /XStep 9 /YStep 9 " + resources,
        "/A gs /G Do /I Do");
    return file + "trailer << /Root 1 0 R >>\nstartxref\n0\n%%EOF\n";
}

/// A file that each input is written to in turn.
class ScratchFile {
public:
    ScratchFile() { close(mkstemp(mPath.data())); }

    ~ScratchFile() { unlink(mPath.c_str()); }

    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ScratchFile(ScratchFile&&) = delete;
    ScratchFile& operator=(ScratchFile&&) = delete;

    [[nodiscard]] const std::string& Write(const std::string& bytes) const {
        std::ofstream(mPath, std::ios::binary) << bytes;
        return mPath;
    }

private:
    std::string mPath = "/tmp/norvane-fuzz-XXXXXX";
};

void PlayInto(HOST::Host& host, PDF::PdfDocument& document, PDF::Diagnostics& diagnostics) {
    const auto exporter = host.CreateExporter();
    const auto policy = host.CreatePolicy();
    policy->SetBool(kTransparencyKey, true);
    const auto output = MakeObject<HOST::MemoryProvider>();
    auto* space = HOST::BaseConnectionSpace::From(exporter->Begin(*output, policy.Get()));
    if (space == nullptr) {
        std::abort();
    }
    {
        PDF::ReaderOptions options;
        options.keepsAlpha = true;
        PDF::PagePlayer player(document, host, *space, options, diagnostics);
        std::string error;
        player.CollectFonts({0}, error);
        player.Play(0);
    }
    exporter->End();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ScratchFile file;
    HOST::SetLogSink({});
    HOST::Host host;
    std::string error;
    if (!host.LoadPlugin(NORVANE_PLUGIN, error)) {
        std::abort();
    }
    const std::string content(data, data + size);
    PDF::Diagnostics diagnostics;
    PDF::OpenResult result = PDF::OpenResult::kOk;
    const auto document =
        PDF::PdfDocument::Open(file.Write(PageOf(content)), "", diagnostics, result, error);
    if (document && document->PageCount() > 0) {
        PlayInto(host, *document, diagnostics);
    }
    return 0;
}
