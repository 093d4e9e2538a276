#pragma once

#include <functional>
#include <utility>

#include "QMfcApp.h"

/// Who is inside a panel. A host may release it from what it is asked there, or while a dialog of the panel is open; its memory goes
/// when the last one has left.   [host main]
class PanelUse {
public:
    /// @param onEmpty called when the last one leaves.
    explicit PanelUse(std::function<void()> onEmpty)
        : m_onEmpty(std::move(onEmpty)) {}
    PanelUse(const PanelUse&) = delete;
    PanelUse& operator=(const PanelUse&) = delete;

    /// One call inside the panel. Qt's application object stays as long as it lasts.
    class Visit {
    public:
        explicit Visit(PanelUse& use)
            : m_use(use) {
            ++m_use.m_inside;
        }
        ~Visit() {
            if (--m_use.m_inside == 0)
                m_use.m_onEmpty();
        }
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

    private:
        const ModalLoop m_loop;
        PanelUse& m_use;
    };

    bool IsEmpty() const { return m_inside == 0; }

private:
    const std::function<void()> m_onEmpty;
    int m_inside = 0;
};
