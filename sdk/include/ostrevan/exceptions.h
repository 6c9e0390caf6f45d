#pragma once

#include <new>
#include <string>
#include <utility>

#include "nuv/exceptions.h"

namespace ostrevan {

/// No service is registered under the identifier asked for.
class exception_service_not_found : public nuv::fixed_exception {
public:
    exception_service_not_found() noexcept : fixed_exception("Service not found") {}

protected:
    explicit exception_service_not_found(const char* text) noexcept : fixed_exception(text) {}
};

/// The service is there but too old to offer the extension asked for.
class exception_service_extension_not_found : public exception_service_not_found {
public:
    exception_service_extension_not_found() noexcept : exception_service_not_found("Service extension not found") {}
};

/// The user asked to stop the work.
class exception_aborted : public nuv::fixed_exception {
public:
    exception_aborted() noexcept : fixed_exception("Interrupted") {}
};

}  // namespace ostrevan

namespace ostrevan_io {

/// Base of what reading and writing can fail with.
class exception_io : public nuv::fixed_exception {
public:
    exception_io() noexcept : fixed_exception("I/O error") {}

protected:
    explicit exception_io(const char* text) noexcept : fixed_exception(text) {}
};

/// The bytes are not of the format they are read as.
class exception_io_data : public exception_io {
public:
    exception_io_data() noexcept : exception_io("Unsupported format or corrupted file") {}
};

/// A stream ended before the bytes that its format promises.
class exception_io_data_truncation : public exception_io_data {
public:
    [[nodiscard]] const char* what() const noexcept override { return "Unexpected end of file"; }
};

/// An error of the file system, with the file and the reason in the text.
class exception_io_system : public exception_io {
public:
    explicit exception_io_system(std::string text) : text_(std::move(text)) {}
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_;
};

/// No file system handles the protocol of a path.
class exception_io_no_handler_for_path : public exception_io_system {
public:
    using exception_io_system::exception_io_system;
};
/// A stream of unknown length where a length is needed.
class exception_io_no_length : public exception_io_system {
public:
    using exception_io_system::exception_io_system;
};
class exception_io_not_found : public exception_io_system {
public:
    using exception_io_system::exception_io_system;
};
class exception_io_denied : public exception_io_system {
public:
    using exception_io_system::exception_io_system;
};
/// Another program has the file open and shares it with no one.
class exception_io_sharing_violation : public exception_io_system {
public:
    using exception_io_system::exception_io_system;
};
class exception_io_already_exists : public exception_io_system {
public:
    using exception_io_system::exception_io_system;
};

}  // namespace ostrevan_io
