#ifndef ARBORIST_LOADING_XML_FILE_H
#define ARBORIST_LOADING_XML_FILE_H

#include <cstddef>
#include <string>

#include <tinyxml2.h>

/// Opens the XML files of rule sets.
namespace XmlFile {

/// Largest number of attributes of an element; see LineOfTooManyAttributes.
constexpr std::size_t MOST_ATTRIBUTES = 256;

/// The outcome of a load.
struct Outcome {
    tinyxml2::XMLError error = tinyxml2::XML_SUCCESS;
    /// Why the file can't be used; empty for success.
    std::string message;
    /// Line of the error from 1; 0 if not known.
    int line = 0;
};

/// Loads a file into `document`, which is empty after a failure. An element with too many attributes is a failure with
/// a line in the log, before anything is parsed. A file that is not a plain file is unreadable: opening a pipe would
/// wait for its writer.
Outcome Load(tinyxml2::XMLDocument& document, const std::string& path);

} // namespace XmlFile

#endif
