#pragma once

#include <string>
#include <utility>
#include <vector>

#include "IMInterface.h"

namespace stagehost {

/// The names under which the host's root object answers, each with the face behind it. Filled while the host is made
/// and only read from then on, so it needs no lock.
class FaceTable {
public:
    /// Makes a face known; it must outlive the table.   [host main]
    void Offer(const char* name, void* face) { m_faces.emplace_back(name, face); }

    /// QueryInterface of every face.   [any]
    KXPCode Find(const char* name, void** out) const;

private:
    std::vector<std::pair<std::string, void*>> m_faces;
};

} // namespace stagehost
