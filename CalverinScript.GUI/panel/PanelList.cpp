#include "PanelList.h"

#include <algorithm>

#include <QCoreApplication>

#include "TCalverinScript_ControlPanel.h"

PanelList& PanelList::Get() {
    static PanelList list;
    return list;
}

void PanelList::Add(TCalverinScript_ControlPanel& panel, const MCalverinScript_Device& device) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_rows.push_back({&panel, &device});
}

void PanelList::Remove(const TCalverinScript_ControlPanel& panel) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_rows.erase(std::remove_if(m_rows.begin(), m_rows.end(), [&panel](const Row& row) { return row.panel == &panel; }),
                 m_rows.end());
}

std::vector<TCalverinScript_ControlPanel*> PanelList::TakePanelsOf(const MCalverinScript_Device& device) {
    const std::lock_guard<std::mutex> guard(m_lock);
    std::vector<TCalverinScript_ControlPanel*> panels;
    for (Row& row : m_rows) {
        if (row.device != &device)
            continue;
        row.device = nullptr;
        panels.push_back(row.panel);
    }
    return panels;
}

void PanelList::ForgetDevice(const MCalverinScript_Device& device) {
    for (TCalverinScript_ControlPanel* panel : TakePanelsOf(device))
        panel->ForgetDevice();
}

void PanelList::CloseWindows() {
    std::vector<Row> rows;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        rows = m_rows;
    }
    for (const Row& row : rows)
        row.panel->CloseWindow();
}

bool PanelList::Has(const MCalverinScript_Device& device) const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return std::any_of(m_rows.begin(), m_rows.end(), [&device](const Row& row) { return row.device == &device; });
}

/// Posting does not call anybody, and a panel that goes takes its posted events along.
void PanelList::Post(const MCalverinScript_Device& device, bool running, std::uint32_t userMode) const {
    const std::lock_guard<std::mutex> guard(m_lock);
    for (const Row& row : m_rows)
        if (row.device == &device)
            QCoreApplication::postEvent(row.panel, new RunStateEvent(running, userMode));
}
