"""Files far larger than any real one, valid all the same."""

import os
import shutil

MIB = 1024 * 1024

INI_KEYS = (
    "DHCPUse=0\nIPAddress=192.168.0.10\nSubnetMask=255.255.255.0\nDefaultGateway=192.168.0.1\n"
    "SSID=measuring-room\nEncryptKey=spectral-demo-1\nDNS=192.168.0.2\nAPConnectUse=1\n"
)


def content(kind, size):
    """The text of a file of about so many bytes. What counts stands at the end of an INI file, so
    that each key is looked for in all of it, and on the first lines of a CSV file."""
    if kind == "ini":
        head, filler, tail = "[Network]\n", "Remark=a line of some other setting\n", INI_KEYS
    else:
        count = 38 if kind == "white" else 75
        values = ",".join(f"{0.912345 + 0.001 * i:.6f}" for i in range(count))
        head, filler, tail = f"Heading\nHeading\n12345678\n{values}\n", f"{values}\n", ""
    lines = (size - len(head) - len(tail)) // len(filler)
    return (head + filler * lines + tail).encode("ascii")


class LargeFiles:
    """`files` holds for each size, in MiB, the paths and their bytes together. All sizes have the
    same amount: a small file read again and again would lie in the processor's cache."""

    def __init__(self, folder, kind, sizes):
        self._folder = folder
        self.files = []
        for size in sizes:
            data = content(kind, size * MIB)
            paths = []
            for number in range(max(sizes) // size):
                paths.append(os.path.join(folder, f"{size}-{number}"))
                with open(paths[-1], "wb") as file:
                    file.write(data)
            self.files.append((paths, len(data) * len(paths)))
        os.sync()  # or the disk is still at it while the files are read

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self._folder, ignore_errors=True)
