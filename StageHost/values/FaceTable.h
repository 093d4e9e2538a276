#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "IMInterface.h"

namespace stagehost {

/// The names under which the host's root object answers, each with the face behind it. Filled while the host is made
/// and only read from then on, so it needs no lock.
class FaceTable {
public:
    /// Makes a face known; it must outlive the table.   [host main]
    void Offer(const char* name, void* face) { m_faces.push_back({name, face, nullptr}); }
    /// The same for a face that is there only while the flag says so, which must outlive the table.   [host main]
    void OfferWhile(const std::atomic<bool>& isOffered, const char* name, void* face) {
        m_faces.push_back({name, face, &isOffered});
    }

    /// QueryInterface of every face.   [any]
    KXPCode Find(const char* name, void** out) const;

private:
    struct Row {
        std::string name;
        void* face;
        const std::atomic<bool>* isOffered; ///< null: always
    };

    std::vector<Row> m_faces;
};

} // namespace stagehost
