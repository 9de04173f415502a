"""The program comes up, and measures the home folder by itself."""

import case
import desktop


class Start(case.Case):
    def testTheWindowHasItsNameAndSize(self):
        quillbrook = self.start()
        self.assertEqual(quillbrook.window().role, "frame")
        self.assertEqual(quillbrook.window().name, "Quillbrook")
        self.assertEqual(desktop.window_geometry(quillbrook.window_id())[2:], (1260, 820))
