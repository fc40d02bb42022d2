// One section of a number format over one number.
#pragma once

#include <string>

#include "host/workbook/format/FormatCode.h"

namespace quillmarch::host::workbook {

// `value` is finite and not negative.
std::string ShowNumber(const FormatSection& section, double value);
// `value` is a date's serial number.
std::string ShowDate(const FormatSection& section, double value, bool date1904);

}  // namespace quillmarch::host::workbook
