#ifndef ARBORIST_TOOLS_BATCH_WORKER_ANSWER_H
#define ARBORIST_TOOLS_BATCH_WORKER_ANSWER_H

#include <string>

#include "tools/arborist/batch/batch.h"

namespace diagnosis::command {

/// An answer as the bytes that a worker of this program sends.
std::string PackedAnswer(const BundleAnswer& answer);
/// True once all bytes of an answer are there.
bool IsWholeAnswer(const std::string& bytes);
/// The answer of bytes that are whole.
BundleAnswer UnpackedAnswer(const std::string& bytes);

} // namespace diagnosis::command

#endif
