#ifndef ARBORIST_STORES_SQL_SQL_VALUE_NUMBER_H
#define ARBORIST_STORES_SQL_SQL_VALUE_NUMBER_H

#include <string_view>

namespace FT::sql {

/// The number at the front of a text as sscanf reads it by "%lf", blanks before it passed over; 0 where there is none.
/// Always with a decimal point: a host that sets a decimal comma must not change what the tables hold.
double ReadDouble(std::string_view text);

} // namespace FT::sql

#endif
