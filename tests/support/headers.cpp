// Nothing but the precompiled headers.
int main() {
    return 0;
}
