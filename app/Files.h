// Files, folders, and what opens them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vl {

// No function here throws, but for lack of memory; the pending error is left as it was.

/// True when the path's attributes can be read: folders count, too.
bool fileExists(std::string_view path);

/// One name for one file, however it is given: from the root, without links, "." and "..". Of what
/// is not there only the folders that are are looked at; where even that cannot be done, the path
/// as it is.
std::string fullPath(std::string_view path);

/// The part behind the last "\" or "/".
std::string fileNameOf(std::string_view path);
/// The part before the last ".", wherever in the path that stands; without one the whole path.
std::string pathWithoutExtension(std::string_view path);

/// `folder` and `name` with the folder's own separator between them: "\" where it contains one
/// and no "/" (a path as the host writes it), else the system's. A folder that ends with a
/// separator gets no second one. An empty folder gives the name alone.
std::string joinPath(std::string_view folder, std::string_view name);

/// The address ("file:///usr/share/a%20b") of a full path, for who opens addresses.
std::string fileAddress(std::string_view path);

/// The folder of the running program; empty when the system does not say.
std::string programFolder();

/// The application-data folder of all users, or of this one; made if it is not there. Empty when
/// the system names none.
std::string dataFolder(bool allUsers);

/// Opens a document or address with what the desktop has for it. False when nothing was started.
bool openDocument(std::string_view pathOrAddress);

/// Starts a program by its arguments, of which the first is the program itself: no shell, not
/// waited for, no window of ours. False when it was not started.
bool startProgram(const std::vector<std::string>& arguments);

/// True only in a Debug build that was started with VL_DEBUG=1.
bool isDevelopmentRun();

}  // namespace vl
