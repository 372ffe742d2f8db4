// A precompiled header belongs to a program.
int main() {
  return 0;
}
