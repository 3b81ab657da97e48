// SPDX-License-Identifier: MIT
#include "postscriptdocument.h"

#include <string_view>

#include "core/libsupport/vlogger/logmessage.h"
#include "core/object/tobject.h"

namespace VANTIX::PS {
namespace {

constexpr const char* kModule = "src/postscriptdocument";

// The name of a composite font: distillers of two makes know it by the font's and the CMap's name
// joined by a hyphen, all other interpreters by the font's name alone.
constexpr std::string_view kAddCMap =
    "/AddCMap\n"  // font (cmap)
    "{\n"
    " currentsystemparams dup /PrinterName known\n"  // font (cmap) params bool
    " {\n"
    "  /PrinterName get (Jaws) eq dup not "                  // font (cmap) jaws !jaws
    "{pop /product where {/product get}{(Unknown)} ifelse "  // font (cmap) product
    "dup (Adobe PostScript Parser) eq exch (Jaws PDF Creator) eq or} if\n"
    "  {\n"  // font (cmap)
    "   /str 256 string def\n"
    "   /CMapStr exch def\n"                                   // font
    "   str cvs length dup\n"                                  // n n
    "   str exch (-) putinterval\n"                            // n
    "   1 add dup str exch CMapStr putinterval\n"              // n+1
    "   CMapStr length add str 0 3 -1 roll getinterval cvn\n"  // font-cmap
    "  }\n"
    "  {pop}\n"  // font
    "  ifelse\n"
    " }\n"
    " {pop pop}\n"  // font
    " ifelse\n"
    "} bind def\n";
static_assert(kAddCMap.size() == 463);

/// The document of one job: holds references to the stream and the factory and owns its copy of the
/// options. It writes straight to the stream.
class PostscriptDocument : public TObject<IPostScriptDocument> {
public:
    void WriteHeader() override {
        for (const std::string_view text :
             {std::string_view("%!PS-Adobe-3.0\n"), std::string_view("%APL_DSC_Encoding: UTF8\n"),
              std::string_view("<< /AllowTransparency true >>setdistillerparams\n"), kAddCMap}) {
            Write(text);
        }
    }

    void WriteTrailer() override { Write("%%EOF\n"); }

    bool FinishWritingDocument() override {
        if (!mDataProvider) {
            LogError(kModule) << "No mDataProvider";
            return false;
        }
        mDataProvider->Flush();
        return true;
    }

    IO::IDictionary* GetOptions() override { return mOptions.Get(); }

    Status Init(IO::IDataProvider* provider, const IO::IDictionary* options, IClassFactory* factory,
                bool reserved) override {
        mDataProvider = TInterfacePtr<IO::IDataProvider>(provider);
        mFactory = TInterfacePtr<IClassFactory>(factory);
        if (options != nullptr) {
            options->CopyTo(mOptions);
        }
        return reserved ? STATUS::kNotSupported : STATUS::kOk;
    }

private:
    void Write(std::string_view text) {
        if (mDataProvider) {
            mDataProvider->Write(text.data(), text.size());
        }
    }

    TInterfacePtr<IO::IDataProvider> mDataProvider;
    TInterfacePtr<IClassFactory> mFactory;
    TInterfacePtr<IO::IDictionary> mOptions;
};

}  // namespace

IPostScriptDocument* CreatePostscriptDocument(IO::IDataProvider& provider, IClassFactory* factory,
                                              const IO::IDictionary* options) {
    if (factory == nullptr) {
        LogError(kModule) << "No factory";
        return nullptr;
    }
    auto document = MakeObject<PostscriptDocument>();
    if (document->Init(&provider, options, factory, false) != STATUS::kOk) {
        LogError(kModule) << "PostscriptDocument could not be initialized.";
        return nullptr;
    }
    return document.Detach();
}

}  // namespace VANTIX::PS
