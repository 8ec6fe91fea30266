// The least that a Qt Core program does to tell its version: the peer of `vq-tl4ctl --version`.
#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    std::puts("1.0.0");
    return 0;
}
