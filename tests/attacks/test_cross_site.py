"""Tests that a link on another site can only open a screen."""

import unittest

from attacker.board import AttackTest
from attacker.browser import SCREEN, Browser, download_link


class CrossSite(AttackTest):
    def statuses(self, target, site, method="GET"):
        browser = self.browser
        headers = {} if site is None else {"Sec-Fetch-Site": site}
        path, _, query = target.partition("?")
        environment = {} if site is None else {"HTTP_SEC_FETCH_SITE": site}
        run = self.board.run(path[1:], method, query, browser.cookie_header, **environment)
        return browser.request(method, target, headers=headers).status, run.answered

    def setUp(self):
        self.browser = Browser(self.board, "admin")

    def test_link_with_more_than_a_function_is_refused(self):
        for target in (SCREEN + "?functionID=106&message=1",
                       SCREEN + "?message=1&functionID=106",
                       SCREEN + "?functionID=106&functionID=105",
                       SCREEN + "?functionID=105&hidden_status=BACKUP&radio_button=3"):
            for site in ("cross-site", "same-site", "anything"):
                for method in ("GET", "HEAD"):
                    with self.subTest(target=target, site=site, method=method):
                        self.assertEqual(self.statuses(target, site, method), (403, 403))

    def test_download_from_another_site_is_refused(self):
        link = download_link(self.browser.backup().text)
        self.assertIsNotNone(link)
        for site in ("cross-site", "same-site"):
            self.assertEqual(self.statuses(link, site), (403, 403))
        self.assertEqual(self.statuses(link, "same-origin"), (200, 200))

    def test_link_with_only_a_function_is_answered(self):
        for function in ("105", "106"):
            for site in ("cross-site", "same-site", "same-origin", "none", None):
                with self.subTest(function=function, site=site):
                    target = SCREEN + "?functionID=" + function
                    self.assertEqual(self.statuses(target, site), (200, 200))

    def test_own_links_are_answered(self):
        for site in ("same-origin", "none", None):
            with self.subTest(site=site):
                target = SCREEN + "?functionID=106&message=1"
                self.assertEqual(self.statuses(target, site), (200, 200))


if __name__ == "__main__":
    unittest.main()
