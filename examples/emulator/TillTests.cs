// A till's own tests against the emulator, with its address in MIRVANE_WEB:
//
//   C:\Windows\Microsoft.NET\Framework\v4.0.30319\csc.exe TillTests.cs
//   .\TillTests.exe
using System;
using System.Net;
using System.Text;

static class TillTests
{
    static readonly string web =
        (Environment.GetEnvironmentVariable("MIRVANE_WEB") ?? "http://127.0.0.1:8100") + "/api/v1";

    // Throws a WebException when the emulator refuses.
    static string Emulator(string method, string path, string body = "")
    {
        using (var client = new WebClient { Encoding = Encoding.UTF8 })
            return method == "GET" ? client.DownloadString(web + path) : client.UploadString(web + path, method, body);
    }

    // The till under test. Yours talks to the register through its component; this one sends the register's commands.
    static string Till(string command) { return Emulator("POST", "/commands", "{\"command\": \"" + command + "\"}"); }
    static void Sell(string name, string price) { Till("3/S//" + name + "///1.000/" + price + "/1/24.00/1/"); }
    static void Verify(string what) { Emulator("POST", "/verify?wait=5", what); }

    static void Holds(string answer, string part)
    {
        if (!answer.Contains(part)) throw new Exception(part + " is missing in " + answer);
    }

    static void ACoffeeIsPaidInCash()
    {
        Sell("Coffee", "1.80");
        Till("5/1///5.00///");
        Till("O/1/");
        Holds(Emulator("GET", "/receipts/last?wait=5"), "\"change\": 3.2");
        Verify("{\"sold\": {\"description\": \"Coffee\", \"price\": 1.8}, \"times\": 1}");
    }

    static void ACardIsDeclinedAndTheReceiptIsPaidInCash()
    {
        Emulator("PATCH", "/card", "{\"next\": [156], \"seconds\": 0}");
        Sell("Lunch", "12.50");
        Till("5/2///12.50/1/1/");
        Holds(Till("?/"), "\"code\": 156");
        Till("5/1///0.00///");
        Till("O/1/");
        Verify("{\"paid\": {\"tender\": \"card\"}, \"times\": 0}");
        Verify("{\"paid\": {\"tender\": \"cash\"}, \"times\": 1}");
    }

    static void Main()
    {
        foreach (Action test in new Action[] { ACoffeeIsPaidInCash, ACardIsDeclinedAndTheReceiptIsPaidInCash })
        {
            Emulator("POST", "/reset");
            test();
        }
        Console.WriteLine("passed");
    }
}
