// What starting and ending a C++ program with the standard streams takes at least.
#include <iostream>

int main() {}
