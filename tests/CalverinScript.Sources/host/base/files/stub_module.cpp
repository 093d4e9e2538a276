/// A module that has nothing but an address.
extern "C" __attribute__((visibility("default"))) int AddressInTheModule() {
    return 1;
}
