// How a name is passed to a POSIX system: as given when a file has exactly that name, else with "\\" read as
// "/". So a name to be created goes to the directory that the program means.
#pragma once

#include <algorithm>
#include <climits>
#include <cstring>
#include <sys/stat.h>

namespace kn::os {

class SystemName {
  public:
    explicit SystemName(const char *name) : name_(name) {
        const std::size_t n = std::strlen(name);
        struct stat ignored;
        if (n >= sizeof text_ || !std::strchr(name, '\\') || lstat(name, &ignored) == 0) return;
        std::replace_copy(name, name + n + 1, text_, '\\', '/');
        name_ = text_;
    }
    SystemName(const SystemName &) = delete;
    SystemName &operator=(const SystemName &) = delete;

    operator const char *() const { return name_; }

  private:
    const char *name_;
    char text_[PATH_MAX];
};

} // namespace kn::os
