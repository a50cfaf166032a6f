// Where fonts come from: the platform's font creation and enumeration, as
// one engine shared by every device and view of the process, so that text
// has the same pixels on every host.
#pragma once

#include "Font.h"

#include <optional>
#include <string_view>

namespace bvx {

class FontEngine {
public:
    virtual ~FontEngine() = default;

    // The font a logical font asks for; a face that isn't installed is
    // replaced by its metric twin or the default face. Null only when no
    // face at all can be found.
    virtual FontHandle CreateFont(const LogFont& logical) = 0;
    // What enumerating a face tells, or nothing when it isn't installed
    // (neither that family nor one metric-compatible with it).
    virtual std::optional<FaceMetrics> EnumerateFace(std::string_view face, bool bold, bool italic) = 0;

    static FontEngine& Shared();
};

} // namespace bvx
