// The program that the precompiled header is made with: tests can only use one that was made like a program.
int main() {
  return 0;
}
