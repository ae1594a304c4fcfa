#include "command/fleet/machine_list.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <utility>

#include "command/base/unusable.h"

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMaxLine = std::size_t{64} * 1024;  // bytes; the system's longest name has 4096

[[noreturn]] void Fail(const std::string& name) {
  throw TUnusable(name + ": cannot be read: " + std::strerror(errno) +
                  "; --machines takes a file of folder names, one a line, or - for standard input");
}

bool IsRegularFile(int descriptor) {
  struct stat status = {};
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

TMachineList::TMachineList(std::vector<std::string> names)
    : m_names(std::make_move_iterator(names.begin()), std::make_move_iterator(names.end())) {}

TMachineList::TMachineList(std::string name, int descriptor) : m_name(std::move(name)), m_descriptor(descriptor) {}

TMachineList TMachineList::Open(const fs::path& file) {
  if (file == "-") return {"standard input", dup(STDIN_FILENO)};
  TMachineList list(file.string(), open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (list.m_descriptor < 0) Fail(list.m_name);
  return list;
}

TMachineList::~TMachineList() {
  if (m_descriptor >= 0) close(m_descriptor);
}

TMachineList::TMachineList(TMachineList&& other) noexcept
    : m_name(std::move(other.m_name)),
      m_descriptor(std::exchange(other.m_descriptor, -1)),
      m_rest(std::move(other.m_rest)),
      m_names(std::move(other.m_names)) {}

bool TMachineList::HasNext() const { return !m_names.empty(); }

std::string TMachineList::TakeNext() {
  std::string name = std::move(m_names.front());
  m_names.pop_front();
  return name;
}

bool TMachineList::IsAtEnd() const { return m_names.empty() && m_descriptor < 0; }

int TMachineList::GetDescriptor() const { return m_descriptor; }

void TMachineList::ReadMore() {
  char piece[65536];
  const ssize_t count = read(m_descriptor, piece, sizeof piece);
  if (count < 0 && errno != EINTR && errno != EAGAIN) Fail(m_name);
  if (count > 0) m_rest.append(piece, static_cast<std::size_t>(count));
  if (count == 0) {
    if (!m_rest.empty()) m_rest += '\n';
    close(std::exchange(m_descriptor, -1));
  }
  TakeLines();
}

void TMachineList::TakeLines() {
  std::size_t begin = 0;
  for (std::size_t end = 0; (end = m_rest.find('\n', begin)) != std::string::npos; begin = end + 1) {
    if (end > begin) m_names.push_back(m_rest.substr(begin, end - begin));
  }
  m_rest.erase(0, begin);
  if (m_rest.size() > kMaxLine) {
    throw TUnusable(m_name + ": has a line of more than " + std::to_string(kMaxLine) +
                    " bytes; --machines takes a file of folder names, one a line");
  }
}

std::optional<std::size_t> TMachineList::CountAll() const {
  if (m_descriptor < 0) return m_names.size();
  if (!IsRegularFile(m_descriptor)) return std::nullopt;
  std::ifstream file(m_name);
  std::size_t count = 0;
  for (std::string line; std::getline(file, line);) count += line.empty() ? 0 : 1;
  return count;
}
