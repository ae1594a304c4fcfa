// Marks what the host's own libraries export. The plug-in is built with hidden visibility and only refers to these.
#pragma once

#define HOST_API __attribute__((visibility("default")))
