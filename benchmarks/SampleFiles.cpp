#include "benchmarks/SampleFiles.h"

#include "files/CFileIO.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace {

[[noreturn]] void fail(const std::string& path) {
    std::fprintf(stderr, "cannot make %s\n", path.c_str());
    std::exit(1);
}

} // namespace

KVA_NETWORKINFO SampleFiles::networkInfo() {
    KVA_NETWORKINFO info = {};
    info.APConnectUse = eAPConnect_ON;
    info.DHCPUse = eDHCP_OFF;
    const std::uint8_t addresses[4][4] = {
        {192, 168, 0, 10}, {255, 255, 255, 0}, {192, 168, 0, 1}, {192, 168, 0, 2}};
    std::memcpy(info.IPAddress, addresses[0], 4);
    std::memcpy(info.SubnetMask, addresses[1], 4);
    std::memcpy(info.DefaultGateway, addresses[2], 4);
    std::memcpy(info.DNS, addresses[3], 4);
    std::snprintf(info.SSID, sizeof info.SSID, "%s", "measuring-room");
    std::snprintf(info.EncryptKey, sizeof info.EncryptKey, "%s", "spectral-demo-1");
    return info;
}

std::vector<std::string> SampleFiles::newPaths(const std::string& folder, const std::string& name,
                                               int count) {
    std::vector<std::string> paths;
    for (int i = 0; i < count; ++i)
        paths.push_back(folder + '/' + name + std::to_string(i) + ".ini");
    return paths;
}

std::vector<std::string> SampleFiles::makeNetworkFiles(const std::string& folder,
                                                       const std::string& name, int count) {
    const KVA_NETWORKINFO info = networkInfo();
    std::vector<std::string> paths = newPaths(folder, name, count);
    for (const std::string& path : paths) {
        if (!CFileIO().WriteNetworkIni(path.c_str(), &info))
            fail(path);
    }
    return paths;
}

std::string SampleFiles::makeCalibrationFile(const std::string& folder, const std::string& name,
                                             int valueCount) {
    const std::string path = folder + '/' + name + ".csv";
    std::ofstream file(path);
    file << "Calibration values\nSerial number and values\n12345678\n";
    for (int i = 0; i < valueCount; ++i)
        file << (i > 0 ? "," : "") << std::to_string(0.912345 + 0.001 * i);
    file << '\n';
    file.close();
    if (!file)
        fail(path);
    return path;
}
