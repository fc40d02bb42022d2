// Dates as a workbook keeps them: days since an epoch, the time of day as their fraction.
#pragma once

#include <cstdint>
#include <string_view>

namespace quillmarch::host::workbook {

struct DateParts {
  int year = 0;
  int month = 0;    // 1 to 12
  int day = 0;      // 1 to 31; 0 for day 0 of the system of 1900
  int weekday = 0;  // 0 is Sunday
};

// The system of 1900 has a 29 February 1900, as spreadsheets always had. False for a day before
// the epoch or after the year 9999.
bool DateOfDay(std::int64_t day, bool date1904, DateParts& parts);

// "2012-03-04", "2012-03-04T05:06:07.5", "05:06", as strict workbooks write dates. False when it is
// none of them.
bool SerialOfIso(std::string_view text, bool date1904, double& serial);

}  // namespace quillmarch::host::workbook
