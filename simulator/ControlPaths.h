/**
 * Where a program that uses a bench is found: its control folder, its socket, its entry in the
 * folder of running benches. Library and command use the same rules.
 *
 * | What                  | Where                                                            |
 * |-----------------------|------------------------------------------------------------------|
 * | control folder        | `BENCH.control` beside the bench file                            |
 * | lock                  | `lock` in the control folder                                     |
 * | socket                | `socket` in the control folder; `HASH.socket` in a runtime folder |
 * |                       | where that path is too long for a socket                         |
 * | entry                 | `HASH.json` in the runtime folder                                |
 *
 * The runtime folder is the one that `KVASIM_RUNTIME_DIR` names, or else `vq-tl4-simulator` in the
 * folder that `XDG_RUNTIME_DIR` names, or else `/tmp/vq-tl4-simulator-UID`. HASH is made from the
 * absolute path of the bench file. All folders are for their owner only.
 */
#ifndef SIMULATOR_CONTROLPATHS_H
#define SIMULATOR_CONTROLPATHS_H

#include <string>
#include <vector>

#include <sys/un.h>

namespace kvasim {

/** @param bench the absolute path of the bench file, here and below */
std::string controlFolder(const std::string& bench);

/** The paths that the socket may have, best first; each fits an address. */
std::vector<std::string> socketPaths(const std::string& bench);

/** The runtime folder that a program registers in. */
std::string runtimeFolder();

/** The folders that a program which was started elsewhere may have registered in, the one of
    `runtimeFolder` first; no other one where `KVASIM_RUNTIME_DIR` is set. */
std::vector<std::string> runtimeFolders();

/** The path of the entry in the runtime folder. */
std::string entryPath(const std::string& bench);

/** Makes the folder for its owner only, where it is not there. The folder above must exist.
    @throws InputError when that fails, or when it is there and is no folder, or others than the
    present user own it or may enter it */
void makePrivateFolder(const std::string& path);

bool isPrivateFolder(const std::string& path);

/** The address of a socket. @return false when the path is too long for it */
bool socketAddress(const std::string& path, sockaddr_un& address);

/** Whether the program at the other end runs for the present user. */
bool peerIsSameUser(int socket);

/** Sets close-on-exec and non-blocking; no signal for a broken connection. */
void prepareDescriptor(int descriptor);

} // namespace kvasim

#endif
