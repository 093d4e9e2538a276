#pragma once

/// While it lives, the allocations of its thread beyond the first few fail.
class FailingAllocations {
public:
    /// @param granted how many are made before that.
    explicit FailingAllocations(int granted = 0);
    ~FailingAllocations();
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;

    /// Whether one has failed.
    bool HasStruck() const;
};
