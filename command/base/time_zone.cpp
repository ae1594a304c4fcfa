#include "command/base/time_zone.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <string>

#include "command/base/remark.h"
#include "command/base/unusable.h"

void LoadTimeZone() {
  errno = 0;
  tzset();  // returns nothing; errno is that of its last failing system call
  if (errno == 0 || errno == ENOENT) return;
  if (!DescribesFile(errno)) FailToRead("the time zone (TZ, or /etc/localtime)", errno);
  ShowRemark(std::string("the time zone (TZ, or /etc/localtime) cannot be read: ") + std::strerror(errno) +
             ", so dates are those of UTC");
}
