// SPDX-License-Identifier: MIT
#pragma once

#include <hb-subset.h>

#include <memory>

/// Objects of HarfBuzz that release themselves.
namespace VANTIX::HOST::HARFBUZZ {

template <auto Destroy>
struct Destroyer {
    template <class T>
    void operator()(T* object) const {
        Destroy(object);
    }
};

using Blob = std::unique_ptr<hb_blob_t, Destroyer<hb_blob_destroy>>;
using Face = std::unique_ptr<hb_face_t, Destroyer<hb_face_destroy>>;
using Input = std::unique_ptr<hb_subset_input_t, Destroyer<hb_subset_input_destroy>>;
using Plan = std::unique_ptr<hb_subset_plan_t, Destroyer<hb_subset_plan_destroy>>;

}  // namespace VANTIX::HOST::HARFBUZZ
