#ifndef ARBORIST_STORES_SQL_SQL_VALUE_NUMBER_H
#define ARBORIST_STORES_SQL_SQL_VALUE_NUMBER_H

#include <string_view>

namespace FT::sql {

/// The number at the front of a text as sscanf reads it with "%lf", after leading white space; 0 if there is none. The
/// decimal point is always ".": a host that sets a decimal comma must not change the numbers of the tables.
double ReadDouble(std::string_view text);

} // namespace FT::sql

#endif
