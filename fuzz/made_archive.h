#ifndef ARBORIST_FUZZ_MADE_ARCHIVE_H
#define ARBORIST_FUZZ_MADE_ARCHIVE_H

#include <cstddef>
#include <cstdint>
#include <string>

/// The bytes of an archive for an input: the input itself if it begins like an archive; otherwise its bytes are choices
/// from which an archive is made whose directory agrees with its entries, but for what the choices change. That gets
/// behind the checks of the directory, where plain bytes rarely do.
std::string ArchiveOf(const std::uint8_t* data, std::size_t size);

#endif
