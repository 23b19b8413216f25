// That this links is the test; see CMakeLists.txt.
int main() {
  return 0;
}
