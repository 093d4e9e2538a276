/// A library that is no module.
extern "C" __attribute__((visibility("default"))) int GetSomethingElse() {
    return 0;
}
