// SPDX-License-Identifier: MIT
#pragma once

/// libqpdf. The analyser's front end cannot read its JSON header as C++20: it needs a class before
/// the class is complete. The reader uses none of it.
#if defined(__clang__)
#define JSON_HH
class JSON;
#endif

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QPDFObjectHandle.hh>
