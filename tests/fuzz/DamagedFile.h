// The files that fuzzers damage.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>

#include "db/jet/MemoryFile.h"

namespace vl::test {

/// 0 first-light.RemindDB: many columns, long values; 1 generated-reminders.RemindDB: indexes with
/// nodes; 2 one made here: columns of all types, keys in both orders, moved and deleted rows, an
/// autonumber. Made once.
const std::string& soundFile(std::size_t index);

inline constexpr std::size_t kSoundFiles = 3;

/// What an input of `useDamaged` asks for.
struct DamagedFile {
    Disk disk;
    std::size_t act = 0;
};

DamagedFile damagedFile(std::span<const std::byte> input);

/// Opens it for writing. Nobody else does, so that counting our writes shows all changes.
jet::Database openDamaged(Disk& disk);

}  // namespace vl::test
