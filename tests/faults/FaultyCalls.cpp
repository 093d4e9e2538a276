/// @file
/// A library to be preloaded: counts the calls of one kind that a program makes of the system, and fails the one of a
/// number. What it is told stands in the environment:
///
/// | variable       | says |
/// |----------------|------|
/// | FAULTS_PROGRAM | the program that is meant, by its file's name; others that it starts are left alone |
/// | FAULTS_KIND    | allocation, thread, descriptor, write, short-write, read, short-read or interrupt |
/// | FAULTS_AT      | the number of the call that fails, from 1; 0 fails none |
/// | FAULTS_EVERY   | fails each call whose number can be divided by it; 0 fails none |
/// | FAULTS_OWNERS  | for allocations: the names of files, parted by colons, whose code is meant. An allocation that
/// the library of |                | the language makes counts for the code that called it | | FAULTS_COUNT   | a file
/// of eight bytes, in which the calls are counted, also of a program that is ended | | FAULTS_STACK   | a file that
/// gets the stack of each call that fails |

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <link.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>
#include <unwind.h>

extern "C" {
// The allocator behind the one that stands here, by the names that the C library gives it.
void* LibcMalloc(std::size_t size) __asm__("__libc_malloc");
void* LibcCalloc(std::size_t count, std::size_t size) __asm__("__libc_calloc");
void* LibcRealloc(void* block, std::size_t size) __asm__("__libc_realloc");
void LibcFree(void* block) __asm__("__libc_free");
}

namespace {

enum class Kind { None, Allocation, Thread, Descriptor, Write, ShortWrite, Read, ShortRead, Interrupt };

struct KindName {
    const char* name;
    Kind kind;
};

constexpr KindName kKinds[] = {
    {"allocation", Kind::Allocation}, {"thread", Kind::Thread},       {"descriptor", Kind::Descriptor},
    {"write", Kind::Write},           {"read", Kind::Read},           {"short-write", Kind::ShortWrite},
    {"short-read", Kind::ShortRead},  {"interrupt", Kind::Interrupt},
};

/// What the environment says. Read once, before the program begins.
struct Orders {
    Kind kind = Kind::None;
    std::uint64_t at = 0;
    std::uint64_t every = 0;
    const char* owners = "";
    std::atomic<std::uint64_t>* count = nullptr;
    int stackFile = -1;
};

Orders orders;
thread_local bool isInside = false; ///< calls that are made here are not the program's

std::uint64_t NumberOf(const char* variable) {
    const char* text = std::getenv(variable);
    return text != nullptr ? std::strtoull(text, nullptr, 10) : 0;
}

const char* TextOf(const char* variable) {
    const char* text = std::getenv(variable);
    return text != nullptr ? text : "";
}

Kind KindOf(const char* name) {
    for (const KindName& known : kKinds) {
        if (std::strcmp(known.name, name) == 0)
            return known.kind;
    }
    return Kind::None;
}

/// The function that is hidden by the one of that name here.
template <typename Function>
Function Hidden(const char* name) {
    isInside = true;
    void* found = dlsym(RTLD_NEXT, name);
    isInside = false;
    return reinterpret_cast<Function>(found);
}

#define HIDDEN(name) static const auto hidden = Hidden<decltype(&::name)>(#name)

__attribute__((constructor)) void ReadOrders() {
    if (std::strcmp(TextOf("FAULTS_PROGRAM"), program_invocation_short_name) != 0)
        return;
    isInside = true;
    std::array<void*, 4> places{};
    backtrace(places.data(),
              static_cast<int>(places.size())); // loads what it needs, now and not in the midst of a fault
    const int file = open(TextOf("FAULTS_COUNT"), O_RDWR | O_CLOEXEC);
    void* shared = mmap(nullptr, sizeof(*orders.count), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    isInside = false;
    if (shared == MAP_FAILED)
        std::abort();
    orders.count = static_cast<std::atomic<std::uint64_t>*>(shared);
    orders.at = NumberOf("FAULTS_AT");
    orders.every = NumberOf("FAULTS_EVERY");
    orders.owners = TextOf("FAULTS_OWNERS");
    orders.kind = KindOf(TextOf("FAULTS_KIND"));
}

void NoteStack() {
    isInside = true;
    const int file = open(TextOf("FAULTS_STACK"), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    std::array<void*, 40> places{};
    const int depth = backtrace(places.data(), static_cast<int>(places.size()));
    backtrace_symbols_fd(places.data(), depth, file);
    static_cast<void>(!::write(file, "\n", 1));
    close(file);
    isInside = false;
}

/// Counts a call of that kind. @return whether it has to fail.
bool Strikes(Kind kind) {
    if (kind != orders.kind || isInside)
        return false;
    const std::uint64_t number = ++*orders.count;
    const bool strikes = number == orders.at || (orders.every != 0 && number % orders.every == 0);
    if (strikes && orders.at != 0) // of many nobody wants all stacks
        NoteStack();
    return strikes;
}

template <typename Result>
Result Failed(int error, Result result) {
    errno = error;
    return result;
}

/// Code of one file, as it lies in memory.
struct CodeRange {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    bool isOwn = false;
    bool isLanguage = false; ///< the library of the language
};

const char* FileOf(const char* path) {
    const char* slash = std::strrchr(path, '/');
    return slash != nullptr ? slash + 1 : path;
}

bool IsOwner(const char* name) {
    const std::size_t length = std::strlen(name);
    for (const char* owner = orders.owners; *owner != '\0';) {
        const std::size_t size = std::strcspn(owner, ":");
        if (size == length && std::memcmp(owner, name, size) == 0)
            return true;
        owner += size + (owner[size] == ':' ? 1 : 0);
    }
    return false;
}

int AddRange(dl_phdr_info* info, std::size_t, void* wanted) {
    auto& range = *static_cast<CodeRange*>(wanted);
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const std::uintptr_t begin = info->dlpi_addr + info->dlpi_phdr[i].p_vaddr;
        const std::uintptr_t end = begin + info->dlpi_phdr[i].p_memsz;
        if (info->dlpi_phdr[i].p_type != PT_LOAD || range.begin < begin || range.begin >= end)
            continue;
        const char* name = *info->dlpi_name != '\0' ? FileOf(info->dlpi_name) : program_invocation_short_name;
        range = {begin, end, IsOwner(name), std::strncmp(name, "libstdc++", 9) == 0};
        return 1;
    }
    return 0;
}

/// The file in which an address lies. Remembered by each thread, since libraries of the product stay loaded.
CodeRange RangeOf(const void* address) {
    static thread_local std::array<CodeRange, 16> known;
    static thread_local std::size_t next = 0;
    const auto place = reinterpret_cast<std::uintptr_t>(address);
    for (const CodeRange& range : known) {
        if (place >= range.begin && place < range.end)
            return range;
    }
    CodeRange found{place, place, false, false};
    dl_iterate_phdr(&AddRange, &found);
    known[next++ % known.size()] = found;
    return found;
}

_Unwind_Reason_Code LookForCaller(_Unwind_Context* context, void* found) {
    const auto* address = reinterpret_cast<const void*>(_Unwind_GetIP(context));
    const CodeRange range = RangeOf(address);
    const CodeRange here = RangeOf(reinterpret_cast<const void*>(&LookForCaller));
    if (range.begin == here.begin || range.isLanguage)
        return _URC_NO_REASON;
    *static_cast<bool*>(found) = range.isOwn;
    return _URC_END_OF_STACK;
}

/// Whether an allocation is made by code that is meant, be it through the library of the language.
bool IsOwnCall(const void* caller) {
    const CodeRange range = RangeOf(caller);
    if (!range.isLanguage)
        return range.isOwn;
    bool isOwn = false;
    isInside = true;
    _Unwind_Backtrace(&LookForCaller, &isOwn);
    isInside = false;
    return isOwn;
}

bool AllocationStrikes(const void* caller) {
    return orders.kind == Kind::Allocation && !isInside && IsOwnCall(caller) && Strikes(Kind::Allocation);
}

mode_t TypeOf(int descriptor) {
    struct stat entry {};
    return fstat(descriptor, &entry) == 0 ? entry.st_mode & S_IFMT : 0;
}

bool IsStream(int descriptor) {
    int type = 0;
    socklen_t size = sizeof(type);
    return getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) == 0 ? type == SOCK_STREAM : true;
}

/// The error of a disk that is full, of a network without room, of a line that is broken.
int WriteError(int descriptor) {
    const mode_t type = TypeOf(descriptor);
    return type == S_IFREG ? ENOSPC : (type == S_IFSOCK ? ENOBUFS : EIO);
}

int ReadError(int descriptor) {
    return TypeOf(descriptor) == S_IFSOCK ? ECONNRESET : EIO;
}

/// What one call that moves bytes is to do.
struct Deed {
    int error = 0;         ///< 0: it is done
    std::size_t bytes = 0; ///< at most so many
};

/// Counters of the kernel have no type of a file: what is written to one is never short and never lost.
bool IsCounter(int descriptor) {
    return TypeOf(descriptor) == 0;
}

Deed WriteDeed(int descriptor, std::size_t size) {
    if (orders.kind == Kind::None || isInside || IsCounter(descriptor))
        return {0, size};
    if (Strikes(Kind::Write))
        return {WriteError(descriptor), size};
    if (TypeOf(descriptor) != S_IFREG && Strikes(Kind::Interrupt))
        return {EINTR, size};
    return {0, size > 1 && IsStream(descriptor) && Strikes(Kind::ShortWrite) ? size / 2 : size};
}

Deed ReadDeed(int descriptor, std::size_t size) {
    if (orders.kind == Kind::None || isInside || IsCounter(descriptor))
        return {0, size};
    if (Strikes(Kind::Read))
        return {ReadError(descriptor), size};
    if (TypeOf(descriptor) != S_IFREG && Strikes(Kind::Interrupt))
        return {EINTR, size};
    return {0, size > 1 && IsStream(descriptor) && Strikes(Kind::ShortRead) ? 1 : size};
}

mode_t ModeOf(int flags, va_list arguments) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

} // namespace

#pragma GCC visibility push(default)

extern "C" {

void* malloc(std::size_t size) {
    return AllocationStrikes(__builtin_return_address(0)) ? Failed<void*>(ENOMEM, nullptr) : LibcMalloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    return AllocationStrikes(__builtin_return_address(0)) ? Failed<void*>(ENOMEM, nullptr) : LibcCalloc(count, size);
}

void* realloc(void* block, std::size_t size) {
    return AllocationStrikes(__builtin_return_address(0)) ? Failed<void*>(ENOMEM, nullptr) : LibcRealloc(block, size);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument) {
    HIDDEN(pthread_create);
    return Strikes(Kind::Thread) ? EAGAIN : hidden(thread, attributes, run, argument);
}

int open(const char* path, int flags, ...) {
    HIDDEN(open);
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return Strikes(Kind::Descriptor) ? Failed(EMFILE, -1) : hidden(path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    HIDDEN(open64);
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return Strikes(Kind::Descriptor) ? Failed(EMFILE, -1) : hidden(path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
    HIDDEN(openat);
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return Strikes(Kind::Descriptor) ? Failed(EMFILE, -1) : hidden(folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...) {
    HIDDEN(openat64);
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return Strikes(Kind::Descriptor) ? Failed(EMFILE, -1) : hidden(folder, path, flags, mode);
}

FILE* fopen(const char* path, const char* mode) {
    HIDDEN(fopen);
    return Strikes(Kind::Descriptor) ? Failed<FILE*>(EMFILE, nullptr) : hidden(path, mode);
}

FILE* fopen64(const char* path, const char* mode) {
    HIDDEN(fopen64);
    return Strikes(Kind::Descriptor) ? Failed<FILE*>(EMFILE, nullptr) : hidden(path, mode);
}

int socket(int domain, int type, int protocol) noexcept {
    HIDDEN(socket);
    return Strikes(Kind::Descriptor) ? Failed(EMFILE, -1) : hidden(domain, type, protocol);
}

int socketpair(int domain, int type, int protocol, int* ends) noexcept {
    HIDDEN(socketpair);
    return Strikes(Kind::Descriptor) ? Failed(EMFILE, -1) : hidden(domain, type, protocol, ends);
}

int accept(int listener, sockaddr* address, socklen_t* size) {
    HIDDEN(accept);
    return Strikes(Kind::Descriptor) ? Failed(EMFILE, -1) : hidden(listener, address, size);
}

int accept4(int listener, sockaddr* address, socklen_t* size, int flags) {
    HIDDEN(accept4);
    return Strikes(Kind::Descriptor) ? Failed(EMFILE, -1) : hidden(listener, address, size, flags);
}

int pipe2(int* ends, int flags) noexcept {
    HIDDEN(pipe2);
    return Strikes(Kind::Descriptor) ? Failed(EMFILE, -1) : hidden(ends, flags);
}

int eventfd(unsigned int count, int flags) noexcept {
    HIDDEN(eventfd);
    return Strikes(Kind::Descriptor) ? Failed(EMFILE, -1) : hidden(count, flags);
}

ssize_t write(int descriptor, const void* bytes, std::size_t size) {
    HIDDEN(write);
    const Deed deed = WriteDeed(descriptor, size);
    return deed.error != 0 ? Failed<ssize_t>(deed.error, -1) : hidden(descriptor, bytes, deed.bytes);
}

ssize_t pwrite64(int descriptor, const void* bytes, std::size_t size, off64_t place) {
    HIDDEN(pwrite64);
    const Deed deed = WriteDeed(descriptor, size);
    return deed.error != 0 ? Failed<ssize_t>(deed.error, -1) : hidden(descriptor, bytes, deed.bytes, place);
}

ssize_t send(int descriptor, const void* bytes, std::size_t size, int flags) {
    HIDDEN(send);
    const Deed deed = WriteDeed(descriptor, size);
    return deed.error != 0 ? Failed<ssize_t>(deed.error, -1) : hidden(descriptor, bytes, deed.bytes, flags);
}

ssize_t sendto(int descriptor, const void* bytes, std::size_t size, int flags, const sockaddr* address,
               socklen_t length) {
    HIDDEN(sendto);
    const Deed deed = WriteDeed(descriptor, size);
    return deed.error != 0 ? Failed<ssize_t>(deed.error, -1)
                           : hidden(descriptor, bytes, deed.bytes, flags, address, length);
}

ssize_t sendmsg(int descriptor, const msghdr* message, int flags) {
    HIDDEN(sendmsg);
    const Deed deed = WriteDeed(descriptor, 1);
    return deed.error != 0 ? Failed<ssize_t>(deed.error, -1) : hidden(descriptor, message, flags);
}

std::size_t fwrite(const void* bytes, std::size_t size, std::size_t count, FILE* stream) {
    HIDDEN(fwrite);
    return Strikes(Kind::Write) ? Failed<std::size_t>(ENOSPC, 0) : hidden(bytes, size, count, stream);
}

int fflush(FILE* stream) {
    HIDDEN(fflush);
    return Strikes(Kind::Write) ? Failed(ENOSPC, EOF) : hidden(stream);
}

int fsync(int descriptor) {
    HIDDEN(fsync);
    return Strikes(Kind::Write) ? Failed(EIO, -1) : hidden(descriptor);
}

int fdatasync(int descriptor) {
    HIDDEN(fdatasync);
    return Strikes(Kind::Write) ? Failed(EIO, -1) : hidden(descriptor);
}

int rename(const char* from, const char* to) noexcept {
    HIDDEN(rename);
    return Strikes(Kind::Write) ? Failed(EIO, -1) : hidden(from, to);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned int flags) noexcept {
    HIDDEN(renameat2);
    return Strikes(Kind::Write) ? Failed(EIO, -1) : hidden(fromFolder, from, toFolder, to, flags);
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    HIDDEN(linkat);
    return Strikes(Kind::Write) ? Failed(ENOSPC, -1) : hidden(fromFolder, from, toFolder, to, flags);
}

int mkdir(const char* path, mode_t mode) noexcept {
    HIDDEN(mkdir);
    return Strikes(Kind::Write) ? Failed(ENOSPC, -1) : hidden(path, mode);
}

int ftruncate64(int descriptor, off64_t size) noexcept {
    HIDDEN(ftruncate64);
    return Strikes(Kind::Write) ? Failed(EIO, -1) : hidden(descriptor, size);
}

ssize_t read(int descriptor, void* bytes, std::size_t size) {
    HIDDEN(read);
    const Deed deed = ReadDeed(descriptor, size);
    return deed.error != 0 ? Failed<ssize_t>(deed.error, -1) : hidden(descriptor, bytes, deed.bytes);
}

ssize_t recv(int descriptor, void* bytes, std::size_t size, int flags) {
    HIDDEN(recv);
    const Deed deed = ReadDeed(descriptor, size);
    return deed.error != 0 ? Failed<ssize_t>(deed.error, -1) : hidden(descriptor, bytes, deed.bytes, flags);
}

ssize_t recvfrom(int descriptor, void* bytes, std::size_t size, int flags, sockaddr* address, socklen_t* length) {
    HIDDEN(recvfrom);
    const Deed deed = ReadDeed(descriptor, size);
    return deed.error != 0 ? Failed<ssize_t>(deed.error, -1)
                           : hidden(descriptor, bytes, deed.bytes, flags, address, length);
}

ssize_t recvmsg(int descriptor, msghdr* message, int flags) {
    HIDDEN(recvmsg);
    const Deed deed = ReadDeed(descriptor, 1);
    return deed.error != 0 ? Failed<ssize_t>(deed.error, -1) : hidden(descriptor, message, flags);
}

int recvmmsg(int descriptor, mmsghdr* messages, unsigned int count, int flags, timespec* limit) {
    HIDDEN(recvmmsg);
    const Deed deed = ReadDeed(descriptor, 1);
    return deed.error != 0 ? Failed(deed.error, -1) : hidden(descriptor, messages, count, flags, limit);
}

int poll(pollfd* entries, nfds_t count, int milliseconds) {
    HIDDEN(poll);
    return Strikes(Kind::Interrupt) ? Failed(EINTR, -1) : hidden(entries, count, milliseconds);
}

int ppoll(pollfd* entries, nfds_t count, const timespec* limit, const sigset_t* signals) {
    HIDDEN(ppoll);
    return Strikes(Kind::Interrupt) ? Failed(EINTR, -1) : hidden(entries, count, limit, signals);
}

} // extern "C"

/// As the library of the language has it, but with the allocation counted for who asked for it.
void* operator new(std::size_t size) {
    void* block = AllocationStrikes(__builtin_return_address(0)) ? nullptr : LibcMalloc(size == 0 ? 1 : size);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

void* operator new[](std::size_t size) {
    void* block = AllocationStrikes(__builtin_return_address(0)) ? nullptr : LibcMalloc(size == 0 ? 1 : size);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return AllocationStrikes(__builtin_return_address(0)) ? nullptr : LibcMalloc(size == 0 ? 1 : size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return AllocationStrikes(__builtin_return_address(0)) ? nullptr : LibcMalloc(size == 0 ? 1 : size);
}

#pragma GCC visibility pop
