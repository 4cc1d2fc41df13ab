// What starting a program costs: the time that the report's process is measured against.
int main() {
  return 0;
}
