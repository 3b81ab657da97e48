// SPDX-License-Identifier: MIT
#pragma once

#include "core/io/idataprovider.h"
#include "core/io/idictionary.h"

namespace VANTIX::PS {

/// Key of the job's document in its connection space.
inline constexpr GUID IID_IPOSTSCRIPTDOCUMENT = "456DE43C-7A9B-49B8-A86E-7E56ABE496CA"_guid;

/// The parts of a PostScript file that do not depend on what is drawn.
class IPostScriptDocument : public IObject {
public:
    /// Header comments, the distiller parameter that permits transparency, and the prolog.
    virtual void WriteHeader() = 0;
    virtual void WriteTrailer() = 0;
    /// Flushes the stream; false (logged) when there is none.
    virtual bool FinishWritingDocument() = 0;
    /// The document's own copy of the job's options (borrowed), or null.
    virtual IO::IDictionary* GetOptions() = 0;
    virtual Status Init(IO::IDataProvider* provider, const IO::IDictionary* options,
                        IClassFactory* factory, bool reserved) = 0;
};

/// A document on `provider`; a new reference, or null (logged) without a factory.
IPostScriptDocument* CreatePostscriptDocument(IO::IDataProvider& provider, IClassFactory* factory,
                                              const IO::IDictionary* options);

}  // namespace VANTIX::PS
