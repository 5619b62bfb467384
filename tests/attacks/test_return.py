"""Tests that a login leads only to the board's own pages, and that other sites cannot keep a
session alive."""

import os
import re
import time
import unittest

from attacker.board import AttackTest
from attacker.browser import SCREEN, Browser

ELSEWHERE = ("//evil.example", "https://evil.example/", "/\\evil.example", "/logout.cgi",
             "/common/download.cgi", "105\r\nLocation: //evil.example", "105&next=//evil.example",
             "105/..//evil.example", "5", "")


class Return(AttackTest):
    def log_in(self, **fields):
        return Browser(self.board).post("/login.cgi", {"user": "admin", "password": "admin",
                                                       **fields})

    def test_no_field_leads_elsewhere(self):
        for target in ELSEWHERE:
            for field in ("functionID", "to", "next", "url", "return"):
                with self.subTest(target=target, field=field):
                    answer = self.log_in(**{field: target})
                    self.assertEqual(answer.status, 303)
                    self.assertEqual(answer.headers.get_all("Location"), ["/"])

    def test_known_pages_are_returned_to(self):
        for function, page in (("105", SCREEN + "?functionID=105"),
                               ("106", SCREEN + "?functionID=106"), ("110", "/activity.cgi")):
            self.assertEqual(self.log_in(functionID=function).headers["Location"], page)

    def test_foreign_referer_leads_only_to_own_pages(self):
        for referer in ("http://evil.example/?functionID=105", "http://evil.example/?//x", "?"):
            page = Browser(self.board).post(SCREEN, {"functionID": "105"},
                                            headers={"Referer": referer}).text
            links = re.findall(r'href="(/login[^"]*)"', page)
            self.assertIn(links, (["/login.cgi"], ["/login.cgi?functionID=105"]))

    def test_login_with_a_query_is_refused(self):
        answer = Browser(self.board).post("/login.cgi?functionID=105",
                                          {"user": "admin", "password": "admin"})
        self.assertEqual(answer.status, 400)

    def test_login_link_from_another_site_may_only_name_a_function(self):
        for query, status in (("functionID=105", 200), ("functionID=105&user=x", 403),
                              ("to=105", 403)):
            answer = Browser(self.board).get("/login.cgi?" + query,
                                             headers={"Sec-Fetch-Site": "cross-site"})
            self.assertEqual(answer.status, status, query)

    def test_language_form_leads_nowhere_else(self):
        for target in ELSEWHERE:
            answer = Browser(self.board).post("/index.cgi", {"language": "en",
                                                             "functionID": target})
            self.assertEqual(answer.headers["Location"], "/")


class Stay(AttackTest):
    def setUp(self):
        self.browser = Browser(self.board, "admin")
        self.file = self.board.path("/var/lib/session/" + self.browser.identifier)
        self.then = time.time() - 600
        os.utime(self.file, (self.then, self.then))

    def last_use(self):
        return os.stat(self.file).st_mtime

    def test_page_of_another_site_does_not_keep_session_alive(self):
        for site in ("cross-site", "same-site"):
            for target in ("/stay.cgi?use=1", "/stay.cgi", "/", SCREEN + "?functionID=105",
                           "/activity.cgi", "/common/download.cgi"):
                for mode, destination in (("no-cors", "image"), ("cors", "empty"),
                                          ("navigate", "iframe")):
                    with self.subTest(site=site, target=target, destination=destination):
                        answer = self.browser.get(target, headers={
                            "Sec-Fetch-Site": site, "Sec-Fetch-Mode": mode,
                            "Sec-Fetch-Dest": destination})
                        self.assertEqual(answer.status, 403)
                        self.assertAlmostEqual(self.last_use(), self.then, delta=1)

    def test_link_of_another_site_that_opens_a_page_keeps_session_alive(self):
        answer = self.browser.get(SCREEN + "?functionID=105", headers={
            "Sec-Fetch-Site": "same-site", "Sec-Fetch-Mode": "navigate",
            "Sec-Fetch-Dest": "document"})
        self.assertEqual(answer.status, 200)
        self.assertGreater(self.last_use(), self.then + 300)

    def test_own_page_keeps_session_alive(self):
        answer = self.browser.get("/stay.cgi?use=1", headers={"Sec-Fetch-Site": "same-origin"})
        self.assertEqual(answer.status, 200)
        self.assertGreater(self.last_use(), self.then + 300)

    def test_picture_contains_no_user_data(self):
        answer = self.browser.get("/stay.cgi?use=1")
        self.assertNotIn("admin", answer.text)
        self.assertNotIn(self.browser.identifier, answer.text)


class Activity(AttackTest):
    def test_user_without_right_sees_nothing_of_others(self):
        Browser(self.board, "admin").get("/")
        page = Browser(self.board, "viewer").get("/activity.cgi").text
        self.assertIn("viewer", page)
        self.assertNotIn(">admin", page)


if __name__ == "__main__":
    unittest.main()
