#pragma once

#include <cstdint>
#include <memory>

/// Memory for pictures that come and go at a high rate: what the last owner lets go of is handed
/// out again, as pages fresh from the system cost more than the picture. Any thread.
class PictureMemory {
public:
    PictureMemory();

    /// Not cleared; null when out of memory. May outlive this object.
    [[nodiscard]] std::shared_ptr<uint8_t[]> obtain(int bytes);

    /// Gives back to the system what nobody owns.
    void clear();

private:
    struct Spares;

    const std::shared_ptr<Spares> m_spares;
};
