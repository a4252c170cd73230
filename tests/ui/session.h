// The desktop program, driven by name over standard input as the automation is, for trials that kill it: its
// timers, events and signals are those of the real one, which knows no such input. With "--hands" mouse and
// keys drive it, message boxes wait for these, and it is only asked whether it is whole.
#pragma once

// argv: "session", "--hands" where these drive it, and, where one is to be opened, the path of a job. Each
// line is an object of JSON, and so is each reply, which comes when the event is over:
//   {"do":"record","name":"TraX"}, with "value" to set it as an event of the user; JobFilePath; Pairs
//   {"do":"click","at":"FormMain.MenuFileSave"}; {"do":"get","at":"FormRecovery"} or a grid; {"do":"title"}
//   {"do":"answer","value":"Yes"}   for the next message box; one without an answer is closed and told of
//   {"do":"check"}   "fault" of the reply is what is wrong, "" when nothing is
int RunSession(int argc, char** argv);
