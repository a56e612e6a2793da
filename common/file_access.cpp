#include "common/file_access.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "common/debug_log.h"

namespace orv {

namespace {

// Closes the descriptor and removes the unfinished file; the caller has
// already logged why.
void Abandon(int fd, const std::string& name) {
    if (fd >= 0) {
        close(fd);
    }
    unlink(name.c_str());
}

bool WriteAll(int fd, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = write(fd, content.data(), content.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            if (written == 0) {
                errno = EIO;
            }
            return false;
        }
        content.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

}  // namespace

const char* FileReadText(FileRead result) {
    switch (result) {
        case FileRead::Ok:
            return "read";
        case FileRead::Missing:
            return "missing";
        case FileRead::Unreadable:
            return "unreadable";
        case FileRead::TooLarge:
            return "too large";
    }
    return "unknown";
}

FileRead ReadSmallFile(const std::filesystem::path& path, size_t maxBytes, std::string& content) {
    content.clear();
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return errno == ENOENT ? FileRead::Missing : FileRead::Unreadable;
    }
    struct stat info {};
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        close(fd);
        return FileRead::Unreadable;
    }
    // The size from fstat is only a hint: the file may grow while we read.
    FileRead result = FileRead::Ok;
    char block[8192];
    while (true) {
        const ssize_t got = read(fd, block, sizeof block);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            result = FileRead::Unreadable;
            break;
        }
        if (got == 0) {
            break;
        }
        if (content.size() + static_cast<size_t>(got) > maxBytes) {
            result = FileRead::TooLarge;
            break;
        }
        content.append(block, static_cast<size_t>(got));
    }
    close(fd);
    if (result != FileRead::Ok) {
        content.clear();
    }
    return result;
}

bool ReplaceFileContent(const std::filesystem::path& path, std::string_view content) {
    std::string temporary = path.string() + ".XXXXXX";
    const int fd = mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) {
        LOG_ERROR("mkostemp error:0x%x\n", errno);
        return false;
    }
    struct stat old {};
    const mode_t mode = stat(path.c_str(), &old) == 0 ? (old.st_mode & 07777) : 0644;
    if (fchmod(fd, mode) != 0) {
        LOG_ERROR("fchmod error:0x%x\n", errno);
        Abandon(fd, temporary);
        return false;
    }
    if (!WriteAll(fd, content)) {
        LOG_ERROR("write error:0x%x\n", errno);
        Abandon(fd, temporary);
        return false;
    }
    if (fsync(fd) != 0) {
        LOG_ERROR("fsync error:0x%x\n", errno);
        Abandon(fd, temporary);
        return false;
    }
    if (close(fd) != 0) {
        LOG_ERROR("close error:0x%x\n", errno);
        Abandon(-1, temporary);
        return false;
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        LOG_ERROR("rename error:0x%x\n", errno);
        Abandon(-1, temporary);
        return false;
    }
    return true;
}

}  // namespace orv
