#include <iostream>

int main() {
  // FRAGMENTS
}
